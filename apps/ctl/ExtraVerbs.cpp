#include "apps/ctl/BarState.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "menuextras/MenuExtraTools.h"
#include "paths/HomeFolders.h"
#include "platform/Bundle.h"
#include "platform/DynamicLoader.h"
#include "platform/FileManager.h"
#include "platform/MenuExtraServer.h"
#include "platform/base/PathStrings.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

using menuextras::MenuExtraKind;
using platform::Bundle;
using platform::MenuExtraStatus;
using platform::PropertyList;
using Tools = HalvexMenuExtraTools;

namespace apps {
namespace {

/// Returns the file name without its extension.
std::string nameOf(const MenuExtraKind& kind) {
    const std::string file = kind.fileName;
    return file.substr(0, file.rfind('.'));
}

/// Finds a kind by its tag, identifier or file name (with or without extension). Otherwise prints
/// an error and returns null.
const MenuExtraKind* findKind(const std::string& text) {
    for (const MenuExtraKind& kind : menuextras::allKinds()) {
        if (text == std::to_string(kind.tag) || text == nameOf(kind) || text == kind.fileName ||
            text == kind.identifier)
            return &kind;
    }
    printError(text + ": unknown menu extra; \"halvexctl extras\" lists them");
    return nullptr;
}

std::string installedPath(const std::string& file) {
    return platform::appendingPathComponent(menuextras::installedFolder(), file);
}

/// Same as fileExists, but also true for a dangling symbolic link.
bool entryExists(const std::string& path) {
    return platform::fileManager().fileExists(path) || platform::fileManager().isSymbolicLink(path);
}

/// Returns the version of the bundle at @p path, "?" if it has none, or an empty string if there
/// is no bundle.
std::string versionAt(const std::string& path) {
    const auto bundle = path.empty() || !platform::fileManager().fileExists(path)
                            ? nullptr
                            : Bundle::bundleWithPath(path);
    return bundle ? bundle->version().value_or("?") : "";
}

PropertyList::Dictionary describe(const MenuExtraKind& kind, const BarState& bar,
                                  const std::optional<std::string>& plugIns) {
    const std::string shipped =
        plugIns ? platform::appendingPathComponent(*plugIns, kind.fileName) : "";
    const std::string installed = installedPath(kind.fileName);
    const platform::qt::KnownItem item = bar.find(kind.identifier, installed);
    return {{"tag", kind.tag},
            {"identifier", kind.identifier},
            {"name", nameOf(kind)},
            {"shipped", shipped},
            {"shippedVersion", versionAt(shipped)},
            {"installed", installed},
            {"installedVersion", versionAt(installed)},
            {"loaded", item.state == "loaded"},
            {"state", item.state},
            {"reason", item.reason}};
}

/// An item of a third party has no tag, which is shown as 0, and no shipped bundle.
PropertyList::Dictionary describeThirdParty(const platform::qt::KnownItem& item) {
    const std::string name = item.name.empty() ? platform::lastPathComponent(item.path) : item.name;
    return {{"tag", std::int64_t{0}},
            {"identifier", item.identifier},
            {"name", name},
            {"shipped", ""},
            {"shippedVersion", ""},
            {"installed", item.path},
            {"installedVersion", item.version},
            {"loaded", item.state == "loaded"},
            {"state", item.state},
            {"reason", item.reason}};
}

std::string textLine(const PropertyList& row) {
    const auto text = [&](const char* key) { return std::string(row.stringAt(key)); };
    const auto version = [&](const char* key) {
        const std::string found = text(key);
        return found.empty() ? std::string("-") : found;
    };
    std::string line = std::to_string(*row.find("tag")->integer()) + '\t' + text("name") + '\t' +
                       text("identifier") + "\tshipped " + version("shippedVersion") +
                       "\tinstalled " + version("installedVersion") + '\t' +
                       (*row.find("loaded")->boolean() ? "loaded" : "not loaded");
    if (const std::string reason = text("reason"); !reason.empty())
        line += '\t' + text("state") + ": " + reason;
    return line + '\n';
}

ExitStatus printExtras(bool json) {
    const BarState bar;
    const auto plugIns = Tools::HalvexPrefsPlugins();
    PropertyList::Array rows;
    std::string text;
    for (const MenuExtraKind& kind : menuextras::allKinds()) {
        rows.emplace_back(describe(kind, bar, plugIns));
        text += textLine(rows.back());
    }
    for (const platform::qt::KnownItem& item : bar.thirdPartyItems()) {
        rows.emplace_back(describeThirdParty(item));
        text += textLine(rows.back());
    }
    return json ? print(std::move(rows), Format::Json) : print(text);
}

ExitStatus toggle(const std::string& name, const std::string& state) {
    const bool on = state == "on";
    const MenuExtraKind* kind = findKind(name);
    if (!kind)
        return ExitStatus::Failure;
    paths::makeHomeFolders(platform::fileManager());
    Tools::menuExtraToggle(kind->tag, on ? 1 : 0);
    platform::MenuExtraReference ignored = 0;
    const auto wanted = on ? MenuExtraStatus::NoError : MenuExtraStatus::NotLoaded;
    const std::int32_t status = platform::menuExtraServer().getMenuExtra(kind->identifier, ignored);
    if (!on && (!kind->isToggleable || entryExists(installedPath(kind->fileName))))
        return fail(name + (kind->isToggleable ? ": the installed copy was not removed"
                                               : ": this menu extra cannot be turned off"));
    return status == static_cast<std::int32_t>(wanted) ? ExitStatus::Success : ExitStatus::Failure;
}

ExitStatus install(const std::string& path) {
    std::error_code missing;
    const auto resolved = std::filesystem::canonical(path, missing);
    const std::string bundle = missing ? absolutePath(path) : resolved.string();
    bool isFolder = false;
    if (platform::fileManager().fileExists(bundle, &isFolder) && !isFolder)
        return fail(path + ": a menu extra is a folder, not a file");
    if (platform::pathExtension(bundle) != "menu")
        return fail(path + ": a menu extra's name ends in .menu");
    paths::makeHomeFolders(platform::fileManager());
    return Tools::installMenuExtra(bundle) ? ExitStatus::Success : ExitStatus::Failure;
}

/// Accepts a name or the path of an installed copy. For any other path the library would remove the
/// installed copy of the same name.
ExitStatus remove(const std::string& name) {
    paths::makeHomeFolders(platform::fileManager());
    const bool isPath = name.find('/') != std::string::npos;
    const std::string file = platform::lastPathComponent(isPath ? absolutePath(name) : name);
    if (file.empty() || file == "." || file == ".." ||
        (isPath && absolutePath(name) != installedPath(file)))
        return fail(name + ": this is not the name of an installed copy");
    const std::string bundle = platform::pathExtension(file) == "menu" ? file : file + ".menu";
    const std::string copy = installedPath(bundle);
    // The library ignores dangling links.
    const bool isDangling = entryExists(copy) && !platform::fileManager().fileExists(copy);
    const bool removed =
        isDangling ? platform::fileManager().removeFile(copy) : Tools::removeMenuExtra(bundle);
    return removed ? ExitStatus::Success : fail(name + ": the installed copy was not removed");
}

ExitStatus upgrade(const std::string& name) {
    paths::makeHomeFolders(platform::fileManager());
    if (name.empty())
        return printYesOrNo(Tools::DoUpgradeIfNeeded());
    const MenuExtraKind* kind = findKind(name);
    return kind ? printYesOrNo(Tools::DoUpgradeIfNeeded(kind->tag)) : ExitStatus::Failure;
}

ExitStatus preflight(const std::string& path) {
    const auto url = platform::fileURLWithPath(absolutePath(path));
    Tools::checkPreflight(url.value_or(""));
    const auto bundle = Bundle::bundleWithPath(absolutePath(path));
    const auto executable = bundle ? bundle->executablePath() : std::nullopt;
    if (!executable)
        return fail(path + ": not a bundle with code");
    std::string reason;
    return platform::dynamicLoader().preflight(*executable, reason) ? ExitStatus::Success
                                                                    : fail(path + ": " + reason);
}

std::function<ExitStatus()> alwaysSucceeding(void (*operation)()) {
    return [operation] {
        operation();
        return ExitStatus::Success;
    };
}

void addGenerationVerbs(CLI::App& commands, Task& task) {
    CLI::App& second =
        addVerbGroup(commands, "v2", "Manage the menu extras of the second generation");
    addVerb(second, task, "running",
            "Print whether a menu extra of the second generation is loaded",
            [] { return printYesOrNo(Tools::isHalvexV2Running()); });
    addVerb(second, task, "remove", "Unload the menu extras of the second generation",
            alwaysSucceeding(Tools::HalvexV2Remove));
    CLI::App& current =
        addVerbGroup(commands, "pro", "Manage the menu extras of the current generation");
    addVerb(current, task, "remove", "Unload the menu extras of the current generation",
            alwaysSucceeding(Tools::HalvexProRemove));
}

} // namespace

void addExtraVerbs(CLI::App& commands, Task& task) {
    struct Options {
        std::string name;
        std::string state;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    const auto addNamed = [&](const char* name, const char* description,
                              ExitStatus (*run)(const std::string&), const char* option,
                              const char* optionDescription) {
        return addVerb(commands, task, name, description,
                       [options, run] { return run(options->name); })
            .add_option(option, options->name, optionDescription);
    };

    CLI::App& listing = addVerb(
        commands, task, "extras", "List the product's menu extras, their versions and states",
        [options] { return printExtras(options->json); }, MissingFolders::Ignore);
    addJsonFlag(listing, options->json);

    CLI::App& toggling =
        addVerb(commands, task, "toggle", "Install and load a menu extra, or unload and remove it",
                [options] { return toggle(options->name, options->state); });
    toggling.add_option("NAME", options->name, "The menu extra's tag, name or identifier")
        ->required();
    toggling.add_option("STATE", options->state, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));

    addNamed("install", "Copy a menu extra into the user's Menu Extras folder", install, "PATH",
             "The bundle")
        ->required();
    addNamed("remove", "Remove an installed copy", remove, "NAME",
             "The menu extra's file name, with or without .menu")
        ->required();
    addNamed("upgrade",
             "Install shipped menu extras that differ in version from the installed ones", upgrade,
             "NAME", "The menu extra's tag, name or identifier; default: 1, 2 and 5");
    addNamed("preflight", "Check whether a menu extra's code can be loaded", preflight, "PATH",
             "The bundle")
        ->required();
    addGenerationVerbs(commands, task);
}

} // namespace apps
