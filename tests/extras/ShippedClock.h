#pragma once

#include "platform/Bundle.h"
#include "platform/DynamicLoader.h"
#include "platform/TrustedFile.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/widgets/MenuExtra.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "testing/ManualTimeZones.h"
#include "testing/ManualTimers.h"
#include "tests/support/Fakes.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace test {

constexpr std::int64_t kSunday = 1795387287; // 2026-11-22 22:41:27 UTC

/// Runs the code of the clock's bundle with fake services.
class ShippedClock : public testing::Test {
  protected:
    void SetUp() override {
        platform::expat::install();
        clock.seconds = kSunday;
    }
    void writePreferences(const std::string& entries) {
        const auto next = folder.write("next", "<plist><dict>" + entries + "</dict></plist>");
        std::filesystem::create_directories(folder.file("Library/Preferences"));
        std::filesystem::rename(next, folder.file(kPreferences));
    }
    void setFormat(const std::string& format) {
        writePreferences("<key>MenuClockFormat</key><string>" + format + "</string>");
    }
    void start() {
        const auto bundle = platform::Bundle::bundleWithPath(HALVEX_TIME_MENU);
        std::string reason;
        code = platform::dynamicLoader().load(
            platform::TrustedFile::open(*bundle->executablePath(), reason), reason);
        ASSERT_TRUE(code) << reason;
        const auto make = reinterpret_cast<platform::MenuExtraEntryPoint>(
            code->symbol(platform::kMenuExtraEntryPoint));
        ASSERT_NE(make, nullptr);
        extra.reset(make("HalvexTimeMenu"));
        ASSERT_EQ(extra->initWithBundle(bundle), extra);
    }
    void writeLocations(const std::string& records) {
        const auto next = folder.write("next", "<plist><array>" + records + "</array></plist>");
        std::filesystem::create_directories(folder.file(kProductFolder));
        std::filesystem::rename(next, folder.file(kLocations));
    }
    /// Opens the menu, or updates the open one, at @p time.
    void openMenu(std::int64_t time) {
        clock.seconds = time;
        extra->menuWillOpen();
    }
    void click(std::uint32_t flags, std::int32_t button = 0) {
        events.event = {.modifierFlags = flags, .clickCount = 1, .buttonNumber = button};
        extra->view()->mouseDown(events.event);
    }
    /// Returns the first entry with this title in the menu or its submenus, or null.
    static std::shared_ptr<platform::MenuItem> item(const platform::Menu& menu,
                                                    const std::string& title) {
        for (const auto& entry : menu.items()) {
            if (entry->title() == title)
                return entry;
            if (const auto found = entry->submenu() ? item(*entry->submenu(), title) : nullptr)
                return found;
        }
        return nullptr;
    }
    std::shared_ptr<platform::MenuItem> item(const std::string& title) const {
        return item(*extra->menu(), title);
    }
    std::string title() const { return extra->attributedTitle()->string(); }
    bool becomes(const std::string& text) {
        return loop.runUntil([&] { return title() == text; }, std::chrono::seconds(5));
    }

    static constexpr const char* kProductFolder =
        "Library/Application Support/Quorvane Software/Halvex Pro";
    static constexpr const char* kLocations =
        "Library/Application Support/Quorvane Software/Halvex Pro/Halvex Locations";
    static constexpr const char* kPreferences =
        "Library/Preferences/com.quorvanesoftware.HalvexPro.plist";

    TemporaryFolder folder;
    ScopedEnvironment home{"HOME", folder.path().string()};
    ScopedEnvironment language{"LC_ALL", "C"};
    RecordingLog log;
    RecordingHost host;
    RecordingGraphics graphics;
    RecordingPasteboard pasteboard;
    FixedEvents events;
    PollingMainThread loop;
    ManualClock clock;
    halvextest::ManualTimers timers;
    halvextest::ManualTimeZones zones;
    std::unique_ptr<platform::LoadedCode> code; // destroyed after the objects it created
    std::shared_ptr<platform::MenuExtra> extra;
};

} // namespace test
