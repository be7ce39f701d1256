#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/base/PathStrings.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

using platform::appendingPathComponent;
using platform::PropertyList;

namespace apps {
namespace {

using Names = std::vector<std::string>;

PropertyList::Dictionary paths() {
    using Files = HalvexFilePaths;
    const std::string support = Files::ovxGetUserApplSupportFolder();
    const std::string maker = Files::ovxGetUserQuorvaneSoftwareFolder();
    const std::string product = Files::ovxGetUsersHalvexProSupportDir();
    const std::string localMaker = Files::ovxGetLocalQuorvaneSoftwareSupportDir();
    const std::string localProduct = Files::ovxGetLocalHalvexApplSupportFolder();
    const std::string titles = std::string(WarnMeTitlesFile) + "." + plistFile;
    const std::string times = std::string(WarnMeTimesFile) + "." + plistFile;
    // Paths that an operation creates, opens or reads but does not return are composed here.
    return {
        {"ovxGetUserApplSupportFolder", support},
        {"ovxGetUserQuorvaneSoftwareFolder", maker},
        {"ovxGetUserQuorvaneSoftwareFolder/Menu Extras",
         appendingPathComponent(maker, HalvexMenuExtraFolder)},
        {"ovxGetUsersHalvexProSupportDir", product},
        {"ovxGetApplSupportFolder", ovxPaths::ovxGetApplSupportFolder()},
        {"ovxHalvexMakeUserSupportDir", appendingPathComponent(support, "Halvex")},
        {"ovxShowHalvexThemeFolder", appendingPathComponent(support, themesFolder)},
        {"ovxGetLocalQuorvaneSoftwareSupportDir", localMaker},
        {"ovxGetLocalHalvexApplSupportFolder", localProduct},
        {"ovxGetLocalHalvexProSupportDir", Files::ovxGetLocalHalvexProSupportDir()},
        {"HalvexPicturesList", appendingPathComponent(localMaker, "Pictures")},
        {"HalvexThemesList", appendingPathComponent(localMaker, themesFolder)},
        {"ovxHalvexMakeLocalSupportDir/Holidays", appendingPathComponent(localMaker, "Holidays")},
        {"ovxGetDeskTopBackgroundsPath", ovxPaths::ovxGetDeskTopBackgroundsPath()},
        {"ovxGetGlimmerboxSupportPath", ovxPaths::ovxGetGlimmerboxSupportPath()},
        {"ovxGetiPhotoAlbumPath", ovxPaths::ovxGetiPhotoAlbumPath()},
        {"HalvexLoadLocationFile", appendingPathComponent(product, HalvexLocation)},
        {"HalvexLoadLocationFile/old", appendingPathComponent(support, HalvexLocation)},
        {"HalvexOldPathLocationFile", Files::HalvexOldPathLocationFile()},
        {"HalvexExistsNetLocation", appendingPathComponent(product, HalvexNetLocations)},
        {"loadWarnMeTitles/WarningTitles", appendingPathComponent(product, titles)},
        {"loadWarnMeTitles/WarningTitles/support", appendingPathComponent(support, titles)},
        {"loadWarnMeTitles/WarningTitles/local", appendingPathComponent(localProduct, titles)},
        {"loadWarnMeTitles/WarnMeTimes", appendingPathComponent(product, times)},
        {"loadWarnMeTitles/WarnMeTimes/support", appendingPathComponent(support, times)},
        {"loadWarnMeTitles/WarnMeTimes/local", appendingPathComponent(localProduct, times)},
    };
}

ExitStatus printPaths(bool json) {
    PropertyList::Dictionary all = paths();
    if (json)
        return print(std::move(all), Format::Json);
    std::string text;
    for (const auto& [operation, path] : all)
        text.append(operation).append(1, '\t').append(*path.string()).append(1, '\n');
    return print(text);
}

/// Prints one name per line. Without @p names, reports that the folder of @p kind cannot be read.
ExitStatus printNames(const std::optional<Names>& names, const char* kind, bool json) {
    if (!names)
        return fail(std::string("the folder of ") + kind + " cannot be read");
    if (json)
        return print(PropertyList::Array(names->begin(), names->end()), Format::Json);
    std::string text;
    for (const std::string& name : *names)
        text.append(name).append(1, '\n');
    return print(text);
}

std::optional<Names> frames(const Names& excluded) {
    Names paths;
    for (const std::string& path : excluded)
        paths.push_back(absolutePath(path));
    return ovxPaths::ovxGlimmerboxGetListFrames(paths);
}

} // namespace

void addPathVerbs(CLI::App& commands, Task& task) {
    struct Options {
        bool json = false;
        Names excluded;
    };
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* description, ExitStatus (*run)(Options&),
                         MissingFolders missing = MissingFolders::Create) -> CLI::App& {
        CLI::App& verb = addVerb(
            commands, task, name, description, [options, run] { return run(*options); }, missing);
        addJsonFlag(verb, options->json);
        return verb;
    };
    add(
        "paths", "Print the path of every folder and data file",
        [](Options& given) { return printPaths(given.json); }, MissingFolders::Ignore);
    add("themes", "List the installed themes", [](Options& given) {
        return printNames(ovxPaths::HalvexThemesList(), "themes", given.json);
    });
    add("pictures", "List the installed pictures", [](Options& given) {
        return printNames(ovxPaths::HalvexPicturesList(), "pictures", given.json);
    });
    add("frames", "List the paths of the installed picture frames",
        [](Options& given) { return printNames(frames(given.excluded), "frames", given.json); })
        .add_option("--exclude", options->excluded, "Leave out this path; may be repeated")
        ->allow_extra_args(false);
}

} // namespace apps
