#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Verbs.h"
#include "apps/ctl/WaitUntil.h"
#include "apps/shared/AbsolutePath.h"
#include "platform/Bundle.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"
#include "platform/values/Event.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using platform::MenuExtraReference;
using platform::qt::BarClient;
using platform::qt::KnownItem;

namespace apps {
namespace {

/// Returns 0 for an item that is not loaded. If the bar does not reply, BarClient logs that and the
/// result is std::nullopt.
std::optional<MenuExtraReference> referenceOf(BarClient& bar, const std::string& identifier) {
    MenuExtraReference reference = 0;
    if (bar.getMenuExtra(identifier, reference) == BarClient::kNoReply)
        return std::nullopt;
    return reference;
}

ExitStatus notLoaded(const std::string& identifier) {
    return fail(identifier + ": the menu extra is not loaded");
}

/// Returns the first item for which @p member has this value, or std::nullopt.
std::optional<KnownItem> findItem(BarClient& bar, std::string KnownItem::*member,
                                  const std::string& value) {
    const auto items = bar.items();
    if (!items)
        return std::nullopt;
    const auto found = std::ranges::find(*items.value, value, member);
    return found == items.value->end() ? std::nullopt : std::optional(*found);
}

/// Waits until the bar has loaded or refused the bundle at @p path.
ExitStatus waitUntilLoaded(BarClient& bar, const std::string& path) {
    std::optional<KnownItem> item;
    const auto isDecided = [&] {
        item = findItem(bar, &KnownItem::path, path);
        return item && item->state != "not loaded";
    };
    if (!waitUntil(isDecided))
        return fail(path + ": the menu bar did not load the bundle; see the bar's log");
    return item->state == "loaded" ? ExitStatus::Success : fail(path + ": " + item->reason);
}

struct AddOptions {
    std::string bundle; ///< empty: the bar's own clock
    std::int32_t position = 999;
};

ExitStatus add(const AddOptions& options) {
    const std::string path = absolutePath(
        options.bundle.empty() ? programFolder() / ".." / HALVEX_OWN_ITEMS_FOLDER / "Clock.menu"
                               : std::filesystem::path(options.bundle));
    std::string reason;
    const auto bundle = platform::Bundle::bundleWithPath(path, &reason);
    const auto identifier = bundle ? bundle->bundleIdentifier() : std::nullopt;
    if (!identifier)
        return fail(path + ": " + (reason.empty() ? "the bundle has no identifier" : reason));
    BarClient bar;
    const auto loaded = referenceOf(bar, *identifier);
    if (!loaded)
        return ExitStatus::Failure;
    if (*loaded != 0)
        return fail(*identifier + ": the menu extra is already loaded; remove it first");
    const auto url = platform::fileURLWithPath(path);
    const std::int32_t status = bar.addMenuExtra(url.value_or(""), options.position, 0, 0, 0, 0);
    if (status == 0 || status == static_cast<std::int32_t>(platform::MenuExtraStatus::Refused))
        return waitUntilLoaded(bar, path);
    return fail(path + ": the menu bar did not load the bundle; see the bar's log");
}

ExitStatus failIf(const std::string& reason) {
    return reason.empty() ? ExitStatus::Success : fail(reason);
}

struct ChangeOptions {
    std::string identifier;
    std::int32_t position = 0;
};

ExitStatus move(const ChangeOptions& options) {
    return failIf(BarClient().setPosition(options.identifier, options.position));
}

ExitStatus enable(const ChangeOptions& options) {
    BarClient bar;
    if (const std::string reason = bar.enable(options.identifier); !reason.empty())
        return fail(reason);
    const auto item = findItem(bar, &KnownItem::identifier, options.identifier);
    return item ? waitUntilLoaded(bar, item->path) : notLoaded(options.identifier);
}

ExitStatus disable(const ChangeOptions& options) {
    return failIf(BarClient().disable(options.identifier));
}

ExitStatus remove(const std::string& identifier) {
    BarClient bar;
    const auto reference = referenceOf(bar, identifier);
    if (!reference)
        return ExitStatus::Failure;
    if (*reference == 0) {
        const auto item = findItem(bar, &KnownItem::identifier, identifier);
        return item && item->state == "missing" ? failIf(bar.disable(identifier))
                                                : notLoaded(identifier);
    }
    const auto isUnloaded = [&] { return referenceOf(bar, identifier) == MenuExtraReference{0}; };
    return bar.removeMenuExtra(*reference, 0) == 0 && waitUntil(isUnloaded)
               ? ExitStatus::Success
               : fail(identifier + ": the menu bar did not remove the menu extra");
}

const std::map<std::string, std::uint32_t>& modifierMasks() {
    static const std::map<std::string, std::uint32_t> masks{{"shift", platform::kShiftKeyMask},
                                                            {"control", platform::kControlKeyMask},
                                                            {"option", platform::kOptionKeyMask}};
    return masks;
}

struct ClickOptions {
    std::string identifier;
    std::vector<std::string> modifiers;
    std::int32_t button = 0;
    std::int32_t count = 1;
};

ExitStatus click(const ClickOptions& options) {
    platform::Event event{
        .modifierFlags = 0, .clickCount = options.count, .buttonNumber = options.button};
    for (const std::string& modifier : options.modifiers)
        event.modifierFlags |= modifierMasks().at(modifier);
    BarClient bar;
    const auto handled = bar.click(options.identifier, event);
    if (!handled)
        return fail(handled.reason);
    return print(*handled.value ? "handled\n" : "menu\n");
}

void addClickVerb(CLI::App& menubar, Task& task) {
    const auto options = std::make_shared<ClickOptions>();
    CLI::App& verb =
        addVerb(menubar, task, "click", R"(Click an item and print "handled" or "menu")",
                [options] { return click(*options); });
    verb.add_option("IDENTIFIER", options->identifier, "The item")->required();
    verb.add_option("--modifiers", options->modifiers, "shift, control, option")
        ->delimiter(',')
        ->check(CLI::IsMember(&modifierMasks()));
    verb.add_option("--button", options->button, "0 left, 1 right, 2 middle, 3 back, 4 forward")
        ->check(CLI::Range(0, 31));
    verb.add_option("--count", options->count, "2 for a double-click")->check(CLI::Range(1, 1000));
}

void addChangeVerbs(CLI::App& menubar, Task& task) {
    const auto options = std::make_shared<ChangeOptions>();
    const auto add = [&](const char* name, const char* description,
                         ExitStatus (*change)(const ChangeOptions&)) {
        CLI::App& verb = addVerb(menubar, task, name, description,
                                 [options, change] { return change(*options); });
        verb.add_option("IDENTIFIER", options->identifier, "The item")->required();
        return &verb;
    };
    add("move", "Move an item", move)
        ->add_option("POSITION", options->position, "0 is the rightmost position")
        ->required();
    add("enable", "Enable an item that is disabled, and load it", enable);
    add("disable", "Unload an item and disable it", disable);
}

} // namespace

void addBarItemVerbs(CLI::App& menubar, Task& task) {
    const auto addition = std::make_shared<AddOptions>();
    CLI::App& loading =
        addVerb(menubar, task, "add", "Load a menu extra", [addition] { return add(*addition); });
    loading.add_option("BUNDLE", addition->bundle, "The bundle; default: the bar's own clock");
    loading.add_option("--position", addition->position,
                       "0 is the rightmost position; default: 999");

    const auto identifier = std::make_shared<std::string>();
    addVerb(menubar, task, "remove", "Unload a menu extra",
            [identifier] { return remove(*identifier); })
        .add_option("IDENTIFIER", *identifier, "The item")
        ->required();

    addChangeVerbs(menubar, task);
    addClickVerb(menubar, task);
}

} // namespace apps
