#include "paths/ovxPaths.h"
#include "platform/PropertyListService.h"
#include "tests/memory/Tree.h"
#include "tests/support/Fakes.h"

using test::kUser;
using test::kUserProduct;
using Array = platform::PropertyList::Array;
using Paths = HalvexFilePaths;
using FileOperations = test::Tree;

namespace {

const std::string kLocations = kUserProduct + std::string("/Halvex Locations");
const std::string kCache = kUserProduct + std::string("/Halvex Net Locations.plist");

/// Returns a list with one record of @p size elements, the first of which is @p name.
Array listOf(const std::string& name, std::size_t size) {
    Array record(size, platform::PropertyList("text that does not fit into a small string"));
    record.front() = name;
    return {record};
}

TEST_F(FileOperations, ReturnAnEmptyPathOrListIfMemoryRunsOut) {
    const test::RecordingWorkspace workspace;
    const std::optional<std::string> folder = "A folder with a long name";
    const std::optional<std::vector<std::string>> excluded{{"/not/there/at/all"}};
    const std::string name = "WarningTitlesOfTheTest";
    const std::string frames = kUser + std::string("/Glimmerbox Frames/");
    tree.write(frames + "a.png", "");
    tree.write("/Library/Application Support/Quorvane Software/Themes/Theme", "");
    tree.write("/Library/Application Support/Quorvane Software/Pictures/Picture", "");
    tree.write("~/WarningTitles.plist", "<plist><array><true/></array></plist>");
    const std::string defaults = tree.path("~/WarningTitles.plist");
    const std::string impossible = defaults + "/folder";
    tree.write(kUser + ('/' + name) + ".plist", "<plist><array><true/></array></plist>");
    test::failEachAllocation(
        log,
        {
            {"user folder", [&] { return Paths::ovxGetUserApplSupportFolder(folder); }, {"\"\""}},
            {"user maker folder",
             [&] { return Paths::ovxGetUserQuorvaneSoftwareFolder(folder); },
             {"\"\""}},
            {"user product folder", Paths::ovxGetUsersHalvexProSupportDir, {"\"\""}},
            {"local maker folder", Paths::ovxGetLocalQuorvaneSoftwareSupportDir, {"\"\""}},
            {"local folder", Paths::ovxGetLocalHalvexApplSupportFolder, {"\"\""}},
            {"local product folder", Paths::ovxGetLocalHalvexProSupportDir, {"\"\""}},
            {"old location file", Paths::HalvexOldPathLocationFile, {"\"\""}},
            {"make folder", [&] { ovxPaths::ovxMakeDirIfNeeded(impossible); }},
            {"maker folder", ovxPaths::ovxGetLocalQuorvaneSoftwareSupportDir, {"\"\""}},
            {"folder", [&] { return ovxPaths::ovxGetApplSupportFolder(folder); }, {"\"\""}},
            {"make user folder", ovxPaths::ovxHalvexMakeUserSupportDir},
            {"make local folder", ovxPaths::ovxHalvexMakeLocalSupportDir},
            {"make frames folder", ovxPaths::ovxGlimmerboxMakeSupportDir},
            {"backgrounds", ovxPaths::ovxGetDeskTopBackgroundsPath, {"\"\""}},
            {"frames", ovxPaths::ovxGetGlimmerboxSupportPath, {"\"\""}},
            {"albums", ovxPaths::ovxGetiPhotoAlbumPath, {"\"\""}},
            {"themes", ovxPaths::HalvexThemesList, {"nullopt"}},
            {"pictures", ovxPaths::HalvexPicturesList, {"nullopt"}},
            {"frames", [&] { return ovxPaths::ovxGlimmerboxGetListFrames(excluded); }, {"nullopt"}},
            {"show themes", [] { ovxPaths::ovxShowHalvexThemeFolder(); }},
            {"show local themes", [] { ovxPaths::ovxShowSystemHalvexThemeFolder(); }},
            {"show frames", [] { ovxPaths::ovxShowFramesFolder(); }},
            {"load titles",
             [&] { return Paths::loadWarnMeTitles(name, defaults); },
             {"0 elements"}},
            {"custom titles", [&] { return Paths::hasCustomWarnMeFile(name); }, {"false"}},
        });
}

TEST_F(FileOperations, KeepTheLocationsIfMemoryRunsOut) {
    std::optional<Array> list;
    const auto take = [&] { return std::move(*list); };
    const auto prepare = [&] {
        platform::propertyLists().writeArray(tree.path(kLocations), listOf("old", 5));
        platform::propertyLists().writeArray(tree.path(kCache), listOf("old", 14));
        list = listOf("new own record", 5);
        list->push_back(listOf("new net record", 14).front());
    };
    const auto holds = [&](const std::string& path) {
        return [this, path] {
            if (!tree.exists(path))
                return withLeftovers("none");
            const std::string text = tree.read(path);
            return withLeftovers(text.find("<string>old") != text.npos ? "old" : "new");
        };
    };
    test::failEachAllocation(
        log,
        {
            {"load", Paths::HalvexLoadLocationFile, {"nullopt old"}, prepare, holds(kLocations)},
            {"merge", [&] { return Paths::mergeNetLocation(take()); }, {"nullopt"}, prepare},
            {"save",
             [&] { return Paths::HalvexSaveLocationTable(take()); },
             {"false old"},
             prepare,
             holds(kLocations)},
            {"save the cache",
             [&] { return Paths::HalvexSaveCacheNetLocation(*list); },
             {"false old"},
             prepare,
             holds(kCache)},
            {"exists", Paths::HalvexExistsNetLocation, {"false"}, prepare},
            {"remove", Paths::HalvexRemoveNetLocation, {"false old"}, prepare, holds(kCache)},
        });
}

} // namespace
