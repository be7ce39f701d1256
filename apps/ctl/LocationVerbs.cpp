#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "menuextras/ExportedIdentifiers.h"
#include "paths/HomeFolders.h"
#include "paths/LocationRecords.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"

#include <memory>
#include <string>

using platform::PropertyList;

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
    std::optional<PropertyList::Array> list = HalvexFilePaths::HalvexLoadLocationFile();
    if (!list)
        return refuse("the default locations cannot be read");
    return print(std::move(*list), formatFor(json));
}

/// The user's cache; none when it is missing or unreadable. Unlike the library's own operations
/// this leaves the user's folders as they are.
PropertyList::Array usersCache() {
    std::string path = HalvexFilePaths::ovxGetUserApplSupportFolder();
    for (const char* component :
         {quorvaneSoftwareFolder, HalvexProSupportFolder, HalvexNetLocations})
        path = platform::appendingPathComponent(path, component);
    return platform::propertyLists().readArray(path).value_or(PropertyList::Array());
}

ExitStatus merge(const Options& options) {
    std::optional<PropertyList::Array> list = readList(options.list);
    if (!list)
        return ExitStatus::Refused;
    std::optional<PropertyList::Array> cached =
        options.cache.empty() ? usersCache() : readList(options.cache);
    if (!cached)
        return ExitStatus::Refused;
    return print(mergeRecords(std::move(*list), std::move(*cached)).records, Format::Xml);
}

ExitStatus split(const Options& options) {
    std::optional<PropertyList::Array> list = readList(options.list);
    if (!list)
        return ExitStatus::Refused;
    const SplitRecords records = splitRecords(std::move(*list));
    for (const auto& [path, part] : {std::pair(&options.user, &records.own), //
                                     std::pair(&options.net, &records.net)})
        if (!platform::propertyLists().writeArray(absolutePath(*path), *part))
            return refuse(*path + ": cannot be written");
    return ExitStatus::Done;
}

ExitStatus save(const std::string& file) {
    std::optional<PropertyList::Array> list = readList(file);
    if (!list)
        return ExitStatus::Refused;
    paths::makeHomeFolders(platform::fileManager());
    return HalvexFilePaths::HalvexSaveLocationTable(std::move(*list)) ? ExitStatus::Done
                                                                      : ExitStatus::Refused;
}

CLI::App& addVerb(CLI::App& commands, const char* name, const char* description, Action& chosen,
                  Action action) {
    CLI::App* verb = commands.add_subcommand(name, description);
    verb->callback([&chosen, action = std::move(action)] { chosen = action; });
    return *verb;
}

void addCacheVerbs(CLI::App& locations, Action& chosen) {
    CLI::App* cache = locations.add_subcommand("cache", "The cache of subscribed locations");
    cache->require_subcommand(0, 1);
    addVerb(*cache, "exists", "Whether there is one", chosen,
            [] { return answer(HalvexFilePaths::HalvexExistsNetLocation()); });
    addVerb(*cache, "remove", "Remove it", chosen, [] {
        const bool removed = HalvexFilePaths::HalvexRemoveNetLocation();
        return removed ? ExitStatus::Done : refuse("the cache cannot be removed");
    });
}

} // namespace

void addLocationVerbs(CLI::App& commands, Action& chosen) {
    const auto options = std::make_shared<Options>();
    CLI::App* locations = commands.add_subcommand("locations", "The world clock's locations");
    locations->require_subcommand(0, 1);

    CLI::App& shown = addVerb(*locations, "show", "Print the list, with subscribed locations",
                              chosen, [options] { return show(options->json); });
    addJsonFlag(shown, options->json);

    CLI::App& merged = addVerb(*locations, "merge", "Print a list with subscribed locations merged",
                               chosen, [options] { return merge(*options); });
    merged.add_option("LIST", options->list, "The list")->required();
    merged.add_option("CACHE", options->cache, "The subscribed locations; the user's without it");

    CLI::App& parts = addVerb(*locations, "split", "Split a list into own and subscribed locations",
                              chosen, [options] { return split(*options); });
    parts.add_option("LIST", options->list, "The list")->required();
    parts.add_option("USER", options->user, "Where the own locations go")->required();
    parts.add_option("NET", options->net, "Where the subscribed locations go")->required();
    parts.parse_complete_callback([options] {
        if (samePlace(options->user, options->net))
            throw CLI::ValidationError("USER and NET", "are the same file");
    });

    CLI::App& saved = addVerb(*locations, "save", "Make a list the user's", chosen,
                              [options] { return save(options->list); });
    saved.add_option("LIST", options->list, "The list")->required();
    addCacheVerbs(*locations, chosen);
}

} // namespace apps
