#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Looking.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "menuextras/ExportedIdentifiers.h"
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
    // What is found by creating, showing or reading it is put together from its parts.
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

ExitStatus printPaths(const std::string& root, bool json) {
    const Looking looking(root);
    PropertyList::Dictionary all = paths();
    if (json)
        return print(std::move(all), Format::Json);
    std::string text;
    for (const auto& [operation, path] : all)
        text.append(operation).append(1, '\t').append(*path.string()).append(1, '\n');
    return print(text);
}

/// What the folder holds, one a line.
ExitStatus printNames(const std::optional<Names>& names, const char* folder, bool json) {
    if (!names)
        return refuse("there is no folder of " + std::string(folder) + " that can be read");
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

void addPathVerbs(CLI::App& commands, Action& chosen) {
    struct Options {
        const CLI::Option* root;
        bool json = false;
        Names excluded;
    };
    const auto options = std::make_shared<Options>();
    options->root = commands.get_option("--root");
    const auto add = [&](const char* name, const char* description, ExitStatus (*run)(Options&)) {
        CLI::App* verb = commands.add_subcommand(name, description);
        addJsonFlag(*verb, options->json);
        verb->callback(
            [options, run, &chosen] { chosen = [options, run] { return run(*options); }; });
        return verb;
    };
    add("paths", "Where the folders and data files are, by operation", [](Options& given) {
        return printPaths(absolutePath(given.root->as<std::string>()), given.json);
    });
    add("themes", "The themes that are installed", [](Options& given) {
        return printNames(ovxPaths::HalvexThemesList(), "themes", given.json);
    });
    add("pictures", "The pictures that are installed", [](Options& given) {
        return printNames(ovxPaths::HalvexPicturesList(), "pictures", given.json);
    });
    add("frames", "The picture frames that are installed",
        [](Options& given) { return printNames(frames(given.excluded), "frames", given.json); })
        ->add_option("--exclude", options->excluded, "A path to leave out; may be repeated")
        ->allow_extra_args(false);
}

} // namespace apps
