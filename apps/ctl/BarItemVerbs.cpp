#include "apps/ctl/Eventually.h"
#include "apps/ctl/InputFiles.h"
#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "platform/Bundle.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"
#include "platform/values/Event.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using platform::MenuExtraReference;
using platform::qt::BarClient;

namespace apps {
namespace {

/// 0 for an item that is not loaded; nothing, which the client has said, without an answer.
std::optional<MenuExtraReference> referenceOf(BarClient& bar, const std::string& identifier) {
    MenuExtraReference reference = 0;
    if (bar.getMenuExtra(identifier, reference) == BarClient::kNoAnswer)
        return std::nullopt;
    return reference;
}

struct Addition {
    std::string bundle; ///< empty: the bar's own clock
    std::int32_t position = 999;
};

ExitStatus add(const Addition& wanted) {
    const std::string path = absolutePath(
        wanted.bundle.empty() ? programFolder() / ".." / HALVEX_OWN_ITEMS_FOLDER / "Clock.menu"
                              : std::filesystem::path(wanted.bundle));
    std::string reason;
    const auto bundle = platform::Bundle::bundleWithPath(path, &reason);
    const auto identifier = bundle ? bundle->bundleIdentifier() : std::nullopt;
    if (!identifier)
        return refuse(path + ": " + (reason.empty() ? "it has no identifier" : reason));
    BarClient bar;
    const auto loaded = referenceOf(bar, *identifier);
    if (!loaded)
        return ExitStatus::Refused;
    if (*loaded != 0)
        return refuse(*identifier + " is loaded; another one of it wants that removed first");
    const auto url = platform::fileURLWithPath(path);
    const std::int32_t status = bar.addMenuExtra(url.value_or(""), wanted.position, 0, 0, 0, 0);
    const auto isLoaded = [&] { return referenceOf(bar, *identifier).value_or(0) != 0; };
    return status == 0 && eventually(isLoaded)
               ? ExitStatus::Done
               : refuse(path + ": the menu bar did not load it; its log says why");
}

ExitStatus remove(const std::string& identifier) {
    BarClient bar;
    const auto reference = referenceOf(bar, identifier);
    if (!reference)
        return ExitStatus::Refused;
    if (*reference == 0)
        return refuse(identifier + " is not loaded");
    const auto isGone = [&] { return referenceOf(bar, identifier) == MenuExtraReference{0}; };
    return bar.removeMenuExtra(*reference, 0) == 0 && eventually(isGone)
               ? ExitStatus::Done
               : refuse(identifier + ": the menu bar did not remove it");
}

struct Click {
    std::string identifier;
    std::vector<std::string> modifiers;
    std::int32_t button = 0;
    std::int32_t count = 1;
};

ExitStatus click(const Click& wanted) {
    platform::Event event{
        .modifierFlags = 0, .clickCount = wanted.count, .buttonNumber = wanted.button};
    for (const std::string& modifier : wanted.modifiers)
        event.modifierFlags |= modifier == "shift"     ? platform::kShiftKeyMask
                               : modifier == "control" ? platform::kControlKeyMask
                                                       : platform::kOptionKeyMask;
    BarClient bar;
    const auto reference = referenceOf(bar, wanted.identifier);
    if (!reference)
        return ExitStatus::Refused;
    if (*reference == 0)
        return refuse(wanted.identifier + " is not loaded");
    const auto consumed = bar.click(wanted.identifier, event);
    if (!consumed)
        return refuse(consumed.reason);
    return print(*consumed.value ? "handled\n" : "menu\n");
}

void addClickVerb(CLI::App& menubar, Action& chosen) {
    const auto wanted = std::make_shared<Click>();
    CLI::App* verb = menubar.add_subcommand("click", "Click an item, and print what came of it");
    verb->add_option("IDENTIFIER", wanted->identifier, "The item")->required();
    verb->add_option("--modifiers", wanted->modifiers, "shift, control, option")
        ->delimiter(',')
        ->check(CLI::IsMember({"shift", "control", "option"}));
    verb->add_option("--button", wanted->button, "0 left, 1 right, 2 middle, 3 the next")
        ->check(CLI::Range(0, 31));
    verb->add_option("--count", wanted->count, "2 for a double click")->check(CLI::Range(1, 1000));
    verb->callback([&chosen, wanted] { chosen = [wanted] { return click(*wanted); }; });
}

} // namespace

void addBarItemVerbs(CLI::App& menubar, Action& chosen) {
    const auto addition = std::make_shared<Addition>();
    CLI::App* adding = menubar.add_subcommand("add", "Load a menu extra");
    adding->add_option("BUNDLE", addition->bundle, "Its bundle; without it the bar's own clock");
    adding->add_option("--position", addition->position, "0 is the rightmost");
    adding->callback([&chosen, addition] { chosen = [addition] { return add(*addition); }; });

    const auto identifier = std::make_shared<std::string>();
    CLI::App* removal = menubar.add_subcommand("remove", "Unload a menu extra");
    removal->add_option("IDENTIFIER", *identifier, "The item")->required();
    removal->callback(
        [&chosen, identifier] { chosen = [identifier] { return remove(*identifier); }; });

    addClickVerb(menubar, chosen);
}

} // namespace apps
