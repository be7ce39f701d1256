#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "identifiers/ExportedIdentifiers.h"
#include "paths/HomeFolders.h"
#include "paths/LocationRecords.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"

#include <memory>
#include <string>

using Array = platform::PropertyList::Array;

namespace apps {
namespace {

struct Options {
    std::string list;
    std::string cache;
    std::string user;
    std::string net;
    bool json = false;
};

ExitStatus show(bool json) {
    paths::makeHomeFolders(platform::fileManager());
    std::optional<Array> list = HalvexFilePaths::HalvexLoadLocationFile();
    if (!list)
        return fail("the default locations cannot be read");
    return print(std::move(*list), formatFor(json));
}

/// Returns the user's cache, or an empty list if it cannot be read. Unlike the library's
/// operations, does not create the user's folders.
Array userCache() {
    std::string path = HalvexFilePaths::ovxGetUserApplSupportFolder();
    for (const char* component :
         {quorvaneSoftwareFolder, HalvexProSupportFolder, HalvexNetLocations})
        path = platform::appendingPathComponent(path, component);
    return platform::propertyLists().readArray(path).value_or(Array());
}

ExitStatus merge(const Options& options) {
    std::optional<Array> list = readArray(options.list);
    if (!list)
        return ExitStatus::Failure;
    std::optional<Array> cached = options.cache.empty() ? userCache() : readArray(options.cache);
    if (!cached)
        return ExitStatus::Failure;
    return print(paths::mergeRecords(std::move(*list), std::move(*cached)).records, Format::Xml);
}

ExitStatus split(const Options& options) {
    std::optional<Array> list = readArray(options.list);
    if (!list)
        return ExitStatus::Failure;
    const paths::SplitRecords records = paths::splitRecords(std::move(*list));
    for (const auto& [path, part] : {std::pair(&options.user, &records.own), //
                                     std::pair(&options.net, &records.net)})
        if (!platform::propertyLists().writeArray(absolutePath(*path), *part))
            return fail(*path + ": the list cannot be written");
    return ExitStatus::Success;
}

ExitStatus save(const std::string& file) {
    std::optional<Array> list = readArray(file);
    if (!list)
        return ExitStatus::Failure;
    paths::makeHomeFolders(platform::fileManager());
    const Array net = paths::splitRecords(*list).net;
    if (!HalvexFilePaths::HalvexSaveLocationTable(std::move(*list)))
        return ExitStatus::Failure;
    // The library does not report whether it has written the cache.
    return net.empty() || userCache() == net ? ExitStatus::Success
                                             : fail("the subscribed locations were not saved");
}

ExitStatus cacheExists() {
    paths::makeHomeFolders(platform::fileManager());
    return printYesOrNo(HalvexFilePaths::HalvexExistsNetLocation());
}

ExitStatus removeCache() {
    paths::makeHomeFolders(platform::fileManager());
    return HalvexFilePaths::HalvexRemoveNetLocation() ? ExitStatus::Success
                                                      : fail("the cache cannot be removed");
}

void addCacheVerbs(CLI::App& locations, Task& task) {
    CLI::App& cache = addVerbGroup(locations, "cache", "Manage the cache of subscribed locations");
    addVerb(cache, task, "exists", "Print whether the cache exists", cacheExists);
    addVerb(cache, task, "remove", "Remove the cache", removeCache);
}

} // namespace

void addLocationVerbs(CLI::App& commands, Task& task) {
    const auto options = std::make_shared<Options>();
    CLI::App& locations =
        addVerbGroup(commands, "locations", "Manage the locations of the world clock");

    CLI::App& showing =
        addVerb(locations, task, "show", "Print the user's locations, subscribed ones included",
                [options] { return show(options->json); });
    addJsonFlag(showing, options->json);

    CLI::App& merging =
        addVerb(locations, task, "merge", "Print a list merged with subscribed locations",
                [options] { return merge(*options); });
    merging.add_option("LIST", options->list, "The list")->required();
    merging.add_option("CACHE", options->cache, "The subscribed locations; default: the user's");

    CLI::App& splitting = addVerb(locations, task, "split",
                                  "Split a list into the user's own and subscribed locations",
                                  [options] { return split(*options); });
    splitting.add_option("LIST", options->list, "The list")->required();
    splitting.add_option("USER", options->user, "Write the user's own locations here")->required();
    splitting.add_option("NET", options->net, "Write the subscribed locations here")->required();
    splitting.parse_complete_callback([options] {
        if (isSameFile(options->user, options->net))
            throw CLI::ValidationError("USER and NET", "are the same file");
    });

    addVerb(locations, task, "save", "Save a list as the user's locations",
            [options] { return save(options->list); })
        .add_option("LIST", options->list, "The list")
        ->required();
    addCacheVerbs(locations, task);
}

} // namespace apps
