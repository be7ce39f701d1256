#include "paths/ovxPaths.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <sstream>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;
using Paths = HalvexFilePaths;

namespace {

const std::string kPictures = std::string(kLocalMaker) + "/Pictures";
const std::string kThemes = std::string(kLocalMaker) + "/Themes";
const std::string kFrames = std::string(kUser) + "/Glimmerbox Frames";
const std::string kBackgrounds = "/Library/Desktop Pictures/Glimmerbox Backgrounds";

/// Splits a list at ", " and expands the first letter of each path: U and L are the user's and the
/// local Application Support, M and N the maker folders in them, F the frames, B the backgrounds.
std::vector<std::string> paths(const std::string& shortened) {
    const std::map<char, std::string> names{{'U', kUser},   {'M', kUserMaker},
                                            {'L', kLocal},  {'N', kLocalMaker},
                                            {'F', kFrames}, {'B', kBackgrounds}};
    std::vector<std::string> result;
    std::istringstream stream(shortened);
    for (std::string path; std::getline(stream >> std::ws, path, ',');) {
        const auto found = names.find(path.front());
        result.push_back(found == names.end() ? path : found->second + path.substr(1));
    }
    return result;
}

/// For operations that do not return a path.
template <class Operation>
std::string noPath(Operation operation) {
    operation();
    return {};
}

TEST(SupportFolders, EachOperationReturnsItsPathAndCreatesOnlyItsFolders) {
    RecordingWorkspace workspace;
    std::vector<std::string> opened;
    const struct {
        std::string (*operation)();
        const char *result, *created;
        const char* existing = "U, L";
        const char* failures = "";
    } cases[] = {
        {[] { return Paths::ovxGetUserApplSupportFolder(); }, "U", "", ""},
        {[] { return Paths::ovxGetUserApplSupportFolder("S"); }, "U/S", "U/S"},
        {[] { return Paths::ovxGetUserApplSupportFolder("S"); }, "U/S", "", "", "U/S"},
        {[] { return Paths::ovxGetUserQuorvaneSoftwareFolder(); }, "M", "M"},
        {[] { return Paths::ovxGetUserQuorvaneSoftwareFolder("S"); }, "M/S", "M, M/S"},
        {Paths::ovxGetUsersHalvexProSupportDir, "M/Halvex Pro", "M, M/Halvex Pro"},
        {Paths::ovxGetUsersHalvexProSupportDir, "M/Halvex Pro", "", "", "M, M/Halvex Pro"},
        {Paths::ovxGetLocalQuorvaneSoftwareSupportDir, "N", "N"},
        {ovxPaths::ovxGetLocalQuorvaneSoftwareSupportDir, "N", "N"},
        {Paths::ovxGetLocalHalvexApplSupportFolder, "N/Halvex", "N, N/Halvex"},
        {Paths::ovxGetLocalHalvexProSupportDir, "N/Halvex Pro", "N/Halvex Pro", "N"},
        {Paths::ovxGetLocalHalvexProSupportDir, "N/Halvex Pro", "", "L", "N/Halvex Pro"},
        {Paths::HalvexOldPathLocationFile, "~/Library/Halvex Locations", "", ""},
        {[] { return ovxPaths::ovxGetApplSupportFolder(); }, "M/Halvex", "M, M/Halvex"},
        {[] { return ovxPaths::ovxGetApplSupportFolder("S"); }, "M/Halvex/S",
         "M, M/Halvex, M/Halvex/S"},
        {[] { return noPath(ovxPaths::ovxHalvexMakeUserSupportDir); }, "", "U, U/Halvex", ""},
        {[] { return noPath(ovxPaths::ovxHalvexMakeLocalSupportDir); }, "",
         "N, N/Halvex, N/Pictures, N/Holidays, N/Themes"},
        {[] { return noPath(ovxPaths::ovxHalvexMakeLocalSupportDir); }, "",
         "N, N/Halvex, N/Pictures, N/Pictures/Glimmerbox Backgrounds, N/Holidays, N/Themes",
         "L, B"},
        {[] { return noPath(ovxPaths::ovxHalvexMakeLocalSupportDir); }, "", "", "B",
         "N, N/Halvex, N/Pictures, N/Holidays, N/Themes"},
        {[] { return noPath(ovxPaths::ovxGlimmerboxMakeSupportDir); }, "",
         "U, F, F/Glimmerbox Backgrounds, B", "/Library/Desktop Pictures"},
        {[] { return noPath(ovxPaths::ovxGlimmerboxMakeSupportDir); }, "", "U, F", "", "B"},
        {ovxPaths::ovxGetDeskTopBackgroundsPath, "B", ""},
        {ovxPaths::ovxGetGlimmerboxSupportPath, "F", ""},
        {ovxPaths::ovxGetiPhotoAlbumPath, "~/Pictures/iPhoto Library/Albums", ""},
        {[] { return noPath(ovxPaths::HalvexThemesList); }, "", "N/Themes", "N"},
        {[] { return noPath(ovxPaths::HalvexPicturesList); }, "", "", "L", "N/Pictures"},
        {[] { return noPath([] { ovxPaths::ovxShowHalvexThemeFolder(); }); }, "", "U/Themes"},
        {[] { return noPath(ovxPaths::ovxShowSystemHalvexThemeFolder); }, "", "N/Themes", "N"},
        {[] { return noPath([] { ovxPaths::ovxShowFramesFolder(); }); }, "", ""},
    };
    for (const auto& [operation, result, created, existing, failures] : cases) {
        SCOPED_TRACE(testing::Message() << result << " creates " << created);
        SupportTree tree(paths(existing));
        const auto before = tree.entries();
        EXPECT_EQ(tree.shown(operation()), *result ? paths(result).front() : "");
        for (const std::string& path : std::exchange(workspace.opened, {}))
            opened.push_back(tree.shown(path));
        std::vector<std::string> difference;
        std::ranges::set_difference(tree.entries(), before, std::back_inserter(difference));
        EXPECT_THAT(difference, testing::UnorderedElementsAreArray(paths(created)));
        std::vector<std::string> lines;
        for (const std::string& path : paths(failures))
            lines.push_back("ovxMakeDirIfNeeded: Error creating path: " + tree.path(path));
        EXPECT_EQ(tree.log.take(), lines);
    }
    EXPECT_EQ(opened, paths("U/Themes, N/Themes, F"));
}

TEST(SupportFolders, AFileOrALinkInPlaceOfAFolderIsKept) {
    SupportTree tree({kUser, kLocalMaker});
    tree.write(kThemes, "a file");
    fs::create_symlink("nowhere", tree.systemPath(kUserMaker));
    EXPECT_EQ(ovxPaths::HalvexThemesList(), std::nullopt);
    EXPECT_EQ(tree.shown(Paths::ovxGetUserQuorvaneSoftwareFolder()), kUserMaker);
    EXPECT_THAT(tree.log.take(), IsEmpty());
    EXPECT_TRUE(fs::is_symlink(tree.systemPath(kUserMaker)));
}

TEST(SupportFolders, LinksPointToTheBackgroundsAndAnExistingLinkIsLogged) {
    SupportTree tree({kLocal, kBackgrounds});
    for (int i = 0; i < 2; ++i) {
        ovxPaths::ovxHalvexMakeLocalSupportDir();
        ovxPaths::ovxGlimmerboxMakeSupportDir();
    }
    EXPECT_THAT(tree.log.take(),
                ElementsAre("Error creating symbolic link at: " + kPictures,
                            "Error Creating SymbolicLink at: " + tree.path(kFrames)));
    for (const std::string& folder : {kPictures, kFrames})
        EXPECT_EQ(fs::read_symlink(tree.systemPath(folder + "/Glimmerbox Backgrounds")),
                  kBackgrounds);
}

} // namespace
