#include "apps/ctl/BarItems.h"
#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Looking.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "menuextras/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "menuextras/MenuExtraTools.h"
#include "paths/HomeFolders.h"
#include "platform/Bundle.h"
#include "platform/DynamicLoader.h"
#include "platform/FileManager.h"
#include "platform/MenuExtraServer.h"
#include "platform/base/PathStrings.h"

#include <memory>
#include <string>

using menuextras::MenuExtraKind;
using platform::Bundle;
using platform::MenuExtraStatus;
using platform::PropertyList;
using Tools = HalvexMenuExtraTools;

namespace apps {
namespace {

/// The file name without its extension.
std::string nameOf(const MenuExtraKind& kind) {
    return kind.fileName.substr(0, kind.fileName.rfind('.'));
}

/// The kind with this tag, file name (with or without extension) or identifier; null, after a
/// complaint, when there is none.
const MenuExtraKind* kindNamed(const std::string& text) {
    for (const MenuExtraKind& kind : menuextras::allKinds()) {
        if (text == std::to_string(kind.tag) || text == nameOf(kind) || text == kind.fileName ||
            text == kind.identifier)
            return &kind;
    }
    refuse("there is no menu extra " + text + "; \"halvexctl extras\" lists them");
    return nullptr;
}

/// The version of the bundle at a path; empty when there is none.
std::string versionAt(const std::string& path) {
    const auto bundle = path.empty() || !platform::fileManager().fileExists(path)
                            ? nullptr
                            : Bundle::bundleWithPath(path);
    return bundle ? bundle->version().value_or("?") : "";
}

PropertyList::Dictionary describe(const MenuExtraKind& kind, const BarItems& bar,
                                  const std::optional<std::string>& plugIns) {
    const std::string shipped =
        plugIns ? platform::appendingPathComponent(*plugIns, kind.fileName) : "";
    const std::string installed =
        platform::appendingPathComponent(menuextras::installedFolder(), kind.fileName);
    return {{"tag", kind.tag},
            {"identifier", kind.identifier},
            {"name", nameOf(kind)},
            {"shipped", shipped},
            {"shippedVersion", versionAt(shipped)},
            {"installed", installed},
            {"installedVersion", versionAt(installed)},
            {"loaded", bar.isLoaded(kind.identifier)},
            {"leftOut", bar.leftOutStep(installed)}};
}

std::string line(const PropertyList::Dictionary& row) {
    const auto text = [&](const char* key) { return std::string(*row.find(key)->string()); };
    const auto version = [&](const char* key) {
        const std::string found = text(key);
        return found.empty() ? std::string("-") : found;
    };
    std::string result = std::to_string(*row.find("tag")->integer()) + '\t' + text("name") + '\t' +
                         text("identifier") + "\tshipped " + version("shippedVersion") +
                         "\tinstalled " + version("installedVersion") + '\t' +
                         (*row.find("loaded")->boolean() ? "loaded" : "not loaded");
    if (const std::string step = text("leftOut"); !step.empty())
        result += "\tleft out: it crashed the bar (" + step + ")";
    return result + '\n';
}

ExitStatus showExtras(const std::string& root, bool json) {
    const Looking looking(root);
    const BarItems bar;
    const auto plugIns = Tools::HalvexPrefsPlugins();
    PropertyList::Array rows;
    std::string text;
    for (const MenuExtraKind& kind : menuextras::allKinds()) {
        auto row = describe(kind, bar, plugIns);
        text += line(row);
        rows.emplace_back(std::move(row));
    }
    return json ? print(std::move(rows), Format::Json) : print(text);
}

ExitStatus toggle(const std::string& name, bool on) {
    const MenuExtraKind* kind = kindNamed(name);
    if (!kind)
        return ExitStatus::Refused;
    paths::makeHomeFolders(platform::fileManager());
    Tools::menuExtraToggle(kind->tag, on ? 1 : 0);
    platform::MenuExtraReference ignored = 0;
    const auto wanted = on ? MenuExtraStatus::NoError : MenuExtraStatus::NotLoaded;
    const std::int32_t status = platform::menuExtraServer().getMenuExtra(kind->identifier, ignored);
    return status == static_cast<std::int32_t>(wanted) ? ExitStatus::Done : ExitStatus::Refused;
}

ExitStatus install(const std::string& path) {
    const std::string bundle = absolutePath(path);
    bool isFolder = false;
    if (platform::fileManager().fileExists(bundle, &isFolder) && !isFolder)
        return refuse(path + ": this is a file and no menu extra");
    if (platform::pathExtension(bundle) != "menu")
        return refuse(path + ": a menu extra is a folder whose name ends in .menu");
    paths::makeHomeFolders(platform::fileManager());
    return Tools::installMenuExtra(bundle) ? ExitStatus::Done : ExitStatus::Refused;
}

/// A name alone, or the path of an installed copy: of any other path only the last component would
/// count, which is not what was meant.
ExitStatus remove(const std::string& name) {
    const bool isPath = name.find('/') != std::string::npos;
    const std::string file = platform::lastPathComponent(isPath ? absolutePath(name) : name);
    if (file.empty() || file == "." || file == ".." ||
        (isPath && absolutePath(name) !=
                       platform::appendingPathComponent(menuextras::installedFolder(), file)))
        return refuse(name + ": this is not the name of an installed menu extra");
    const bool hasExtension = platform::pathExtension(file) == "menu";
    return Tools::removeMenuExtra(hasExtension ? file : file + ".menu")
               ? ExitStatus::Done
               : refuse(name + ": was not removed");
}

ExitStatus upgrade(const std::string& name) {
    if (name.empty())
        return answer(Tools::DoUpgradeIfNeeded());
    const MenuExtraKind* kind = kindNamed(name);
    return kind ? answer(Tools::DoUpgradeIfNeeded(kind->tag)) : ExitStatus::Refused;
}

ExitStatus preflight(const std::string& path) {
    const auto url = platform::fileURLWithPath(absolutePath(path));
    Tools::checkPreflight(url.value_or(""));
    const auto bundle = Bundle::bundleWithPath(absolutePath(path));
    const auto executable = bundle ? bundle->executablePath() : std::nullopt;
    if (!executable)
        return refuse(path + ": there is no bundle with code");
    std::string reason;
    return platform::dynamicLoader().preflight(*executable, reason) ? ExitStatus::Done
                                                                    : refuse(path + ": " + reason);
}

CLI::App* addVerb(CLI::App& parent, Action& chosen, const char* name, const char* description,
                  Action action) {
    CLI::App* verb = parent.add_subcommand(name, description);
    verb->callback([&chosen, action = std::move(action)] { chosen = action; });
    return verb;
}

/// A verb of the product's generations, which does not say no.
Action done(void (*operation)()) {
    return [operation] {
        operation();
        return ExitStatus::Done;
    };
}

void addGenerationVerbs(CLI::App& commands, Action& chosen) {
    const auto group = [&](const char* name, const char* description) -> CLI::App& {
        CLI::App* verbs = commands.add_subcommand(name, description);
        verbs->require_subcommand(0, 1);
        return *verbs;
    };
    CLI::App& second = group("v2", "The second generation of the product");
    addVerb(second, chosen, "running", "Whether one of its menu extras is loaded",
            [] { return answer(Tools::isHalvexV2Running()); });
    addVerb(second, chosen, "remove", "Unload its menu extras", done(Tools::HalvexV2Remove));
    addVerb(group("pro", "The current generation of the product"), chosen, "remove",
            "Unload its menu extras", done(Tools::HalvexProRemove));
}

} // namespace

void addExtraVerbs(CLI::App& commands, Action& chosen) {
    struct Options {
        const CLI::Option* root;
        std::string name;
        std::string state;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    options->root = commands.get_option("--root");
    const auto add = [&](const char* name, const char* description, Action action) {
        return addVerb(commands, chosen, name, description, std::move(action));
    };
    const auto addNamed = [&](const char* name, const char* description,
                              ExitStatus (*operation)(const std::string&)) {
        return add(name, description, [options, operation] { return operation(options->name); });
    };
    addJsonFlag(*add("extras", "The product's menu extras, and where each one is",
                     [options] {
                         const auto root = options->root->as<std::string>();
                         return showExtras(absolutePath(root), options->json);
                     }),
                options->json);
    CLI::App* toggled = add("toggle", "Install and load a menu extra, or unload and remove it",
                            [options] { return toggle(options->name, options->state == "on"); });
    toggled->add_option("NAME", options->name, "Its tag, name or identifier")->required();
    toggled->add_option("STATE", options->state, "on or off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
    addNamed("install", "Copy a menu extra into the user's folder of menu extras", install)
        ->add_option("PATH", options->name, "The bundle")
        ->required();
    addNamed("remove", "Remove an installed menu extra", remove)
        ->add_option("NAME", options->name, "Its file name or name")
        ->required();
    addNamed("upgrade", "Install what is shipped in another version than installed", upgrade)
        ->add_option("NAME", options->name, "One menu extra's tag, name or identifier");
    addNamed("preflight", "Whether a menu extra's code could be loaded", preflight)
        ->add_option("PATH", options->name, "The bundle")
        ->required();
    addGenerationVerbs(commands, chosen);
}

} // namespace apps
