#include "identifiers/ExportedIdentifiers.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "menubar/ItemPreferences.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "tests/memory/FailedAllocations.h"
#include "tests/support/ApplicationServices.h"
#include "tests/support/Fakes.h"
#include "ui/HUDWindow.h"
#include "ui/NSMutableString-DateFormat.h"
#include "ui/TintedImage.h"
#include "ui/ovxFeedback.h"

#include <chrono>
#include <thread>

using namespace platform;

namespace {

std::string shown(const Color& color) {
    return color.pattern ? "pattern" : "colour";
}

class ItemOperations : public testing::Test {
  protected:
    ~ItemOperations() override { myDebug = myDebugME = 0; }

    ItemOperations() { expat::install(); }

    void makeExtra() {
        myDebug = myDebugME = 0;
        extra = std::make_shared<HalvexMenuExtraBase>();
        extra->initWithBundle(bundle);
        extra->setTitle("the old title of the item");
        extra->view()->mouseDown({.modifierFlags = kShiftKeyMask});
    }
    std::string title() const { return extra->attributedTitle()->string(); }

    test::CountingLog log;
    test::RecordingHost host;
    test::RecordingGraphics graphics;
    test::FixedEvents events;
    test::ApplicationServices services;
    test::ManualClock clock;
    const std::shared_ptr<Bundle> bundle = std::make_shared<Bundle>(
        "/Test.menu",
        PropertyList::Dictionary{{"CFBundleName", "A name longer than a small string"},
                                 {"CFBundleShortVersionString", "3.1 and some more text"}});
    std::shared_ptr<HalvexMenuExtraBase> extra;
};

TEST_F(ItemOperations, KeepTheItemUsableIfMemoryRunsOut) {
    const std::optional<std::string> newTitle = "the new title of the item";
    const auto attributed = std::make_shared<AttributedString>(*newTitle);
    const auto image = std::make_shared<test::BlankImage>(10, 10);
    const Notification launch{
        .name = kDidLaunchApplication, .object = {}, .userInfo = {{hxNSApplicationName, "Halvex"}}};
    const auto prepare = [this] { makeExtra(); };
    const auto now = [this] { return title(); };
    const auto isAbsent = [this] {
        makeExtra();
        services.running = {};
        services.onOpen = [this] { services.running = {"Halvex"}; };
    };
    const auto isRunning = [this] {
        makeExtra();
        services.running = {"Halvex"};
    };
    const std::string failed = "done the old title of the item";
    test::failEachAllocation(
        log,
        {
            // The bar guards this operation, and other calls of an item's code.
            {"init",
             [&] { return extra->initWithBundle(bundle); },
             {test::kException},
             [this] { extra = std::make_shared<HalvexMenuExtraBase>(); }},
            {"setTitle", [&] { extra->setTitle(newTitle); }, {failed}, prepare, now},
            {"toolTip",
             [&] { return extra->view()->toolTip(); },
             {"\"\""},
             [this] {
                 makeExtra();
                 extra->setToolTip("a tooltip longer than a small string");
             }},
            {"accessible texts",
             [&] { return extra->view()->accessibleDescription().value; },
             {"\"\""},
             [this] {
                 makeExtra();
                 extra->setAccessibleTexts({.value = "a value longer than a small string"});
             }},
            {"setAttributedTitle",
             [&] { extra->setAttributedTitle(attributed); },
             {failed},
             prepare,
             now},
            {"draw",
             [&] {
                 extra->setImage(image);
                 extra->view()->drawRect({{}, {100, 22}});
             },
             {},
             prepare},
            {"reveal the preferences",
             [&] { extra->view()->mouseDown({.modifierFlags = kOptionKeyMask | kControlKeyMask}); },
             {},
             prepare},
            {"preferences file", menubar::productPreferencesFile, {"\"\""}},
            {"open the preferences", [&] { extra->HalvexPrefs(nullptr); }, {}, prepare},
            {"notify", [&] { extra->notifyHalvex2(newTitle); }, {}, prepare},
            {"launched", [&] { extra->HalvexLaunched(launch); }, {}, prepare},
            {"hand over", [&] { extra->HalvexLaunchThread(newTitle); }, {}, isRunning},
            {"launch", [&] { extra->HalvexLaunchThread(newTitle); }, {}, isAbsent},
            {"destructor",
             [&] { extra.reset(); },
             {},
             [this] {
                 makeExtra();
                 myDebug = 2;
             }},
        });
}

TEST_F(ItemOperations, EndTheThreadButNotTheProgramIfMemoryRunsOutInIt) {
    services.running = {"Halvex"};
    for (const auto thread :
         {test::FailingAllocation::Thread::Current, test::FailingAllocation::Thread::Others}) {
        bool failed = true;
        for (int number = 1; failed; ++number) {
            makeExtra();
            const std::weak_ptr<void> item = extra;
            {
                const test::FailingAllocation allocation(number, thread);
                extra->OpenCalculator(nullptr);
                extra.reset();
                const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
                while (!item.expired() && std::chrono::steady_clock::now() < end) {
                    std::this_thread::sleep_for(std::chrono::microseconds(100));
                    services.runMainThread();
                }
                failed = allocation.hasFailed();
            }
            ASSERT_TRUE(item.expired()) << "allocation " << number;
        }
    }
}

TEST_F(ItemOperations, OfTheInterfaceFailIfMemoryRunsOut) {
    test::RecordingPanels panels;
    std::shared_ptr<HUDWindow> panel;
    const auto init = [&panel] {
        return panel->initWithContentRect({{}, {200, 100}}, 0, BackingStore::Buffered, false);
    };
    std::string text;
    const std::string longText = "a text that does not fit into a small string";
    const auto makePanel = [&] {
        panel = std::make_shared<HUDWindow>();
        init();
        text = longText;
    };
    Button button({});
    const test::BlankImage image(10, 10);
    const auto format = [&] { text = "%W, " + longText; };
    const auto isFilled = [&] { return std::string(text.starts_with('%') ? "old" : "new"); };
    test::failEachAllocation(
        log,
        {
            {"init", init, {"null"}, [&] { panel = std::make_shared<HUDWindow>(); }},
            {"background",
             [&] { return shown(panel->sizedHUDBackground()) == "pattern"; },
             {"false"},
             makePanel},
            {"resize", [&] { panel->windowDidResize(); }, {}, makePanel},
            {"setFrame",
             [&] {
                 panel->setFrame({{}, {300, 90}}, true, true);
             },
             {},
             makePanel},
            {"setTitle", [&] { panel->setTitle(std::move(text)); }, {}, makePanel},
            {"white button",
             [&] { panel->makeButtonWhite(button); },
             {},
             [&] { button.setTitle(longText); }},
            {"i button", [&] { panel->addiButton({}, {}, "action:"); }, {}, makePanel},
            {"tint",
             [&] { return HalvexTintedImage::tintedImageWithColor(image, deviceRGB(1, 0, 0)); },
             {"null"}},
            {"week",
             [&] { HalvexDateFormat::fixWeekNum(text, longText); },
             {"done old"},
             format,
             isFilled},
            {"feedback", [&] { ovxFeedback::ovxSendFeedBackViaMail(bundle, longText); }},
        });
}

} // namespace
