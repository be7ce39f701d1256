#include "identifiers/ExportedIdentifiers.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/BusNotifications.h"
#include "tests/desktop/support/FakeNotificationServer.h"
#include "tests/desktop/support/ProgramProcess.h"
#include "warnings/WarningStore.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <tuple>

using test::eventually;

namespace {

class Halvex : public testing::Test {
  protected:
    void SetUp() override { platform::expat::install(); }
    bool isShown() { return !halvex.picture().isNull(); }

    test::ProgramProcess halvex{HALVEX_APPLICATION, "com.quorvanesoftware.Halvex"};
    platform::qt::BusNotifications notifications{halvex.bus->addressText()};
};

TEST_F(Halvex, AnnouncesItsLaunchAndShowsTheCalculatorWhenItIsNotified) {
    std::string launched;
    const auto observer = std::make_shared<int>();
    notifications.addObserver(
        observer, platform::kDidLaunchApplication, [&](const platform::Notification& received) {
            launched = platform::PropertyList(received.userInfo).stringAt(hxNSApplicationName);
        });
    notifications.flush();
    halvex.start();
    EXPECT_TRUE(eventually([&] { return launched == "Halvex"; })) << launched;
    EXPECT_FALSE(isShown());
    notifications.post({"HalvexShowSomethingElseNotification", {}, {}});
    QThread::msleep(300);
    EXPECT_FALSE(isShown());
    notifications.post({"HalvexShowCalculatorNotification", {}, {}});
    ASSERT_TRUE(eventually([this] { return isShown(); }));
    const QImage picture = halvex.picture();
    EXPECT_GT(picture.height(), picture.width()) << "the calculator is taller than wide";
    EXPECT_NE(picture.pixel(2, 2), picture.pixel(picture.width() - 30, picture.height() - 20));
    EXPECT_EQ(halvex.stop(), 0) << halvex.log();
}

TEST_F(Halvex, ShowsTheCalculatorForARequestPostedAsSoonAsItOwnsItsName) {
    const QDBusServiceWatcher watcher("com.quorvanesoftware.Halvex", halvex.bus->connection());
    bool ownsName = false;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, [&] {
        notifications.post({"HalvexShowCalculatorNotification", {}, {}});
        notifications.flush();
        ownsName = true;
    });
    notifications.post({"Other", {}, {}}); // connects
    for (int start = 0; start < 5;
         ++start) { // the moment in which a request could be lost is short
        halvex.launch();
        QElapsedTimer timer;
        for (timer.start(); !ownsName && timer.elapsed() < 5000;) // without eventually's pauses
            QCoreApplication::processEvents();
        ASSERT_TRUE(eventually([this] { return isShown(); })) << start;
        halvex.stop();
        ownsName = false;
    }
}

TEST_F(Halvex, KeepsARequestMadeWhileItStarts) {
    test::copyBundle(HALVEX_PANE, halvex.home() / "Library/PreferencePanes/Halvex Pro.prefPane");
    halvex.launch();
    ::kill(static_cast<pid_t>(halvex.processId()), SIGSTOP);
    EXPECT_EQ(halvex.run({"background", "request", "HalvexShowCalculatorNotification"}, HALVEX_CTL),
              0);
    EXPECT_TRUE(eventually([this] { return isShown(); }));
    ::kill(static_cast<pid_t>(halvex.processId()), SIGCONT);
    EXPECT_EQ(halvex.waitForExit(), 0) << "another process has become the application";
}

TEST_F(Halvex, RunsOncePerSessionAndRepliesToUnknownRequestsWithAnError) {
    halvex.start();
    EXPECT_EQ(halvex.run(), 0);
    EXPECT_EQ(halvex.request("Activate"), "");
    EXPECT_EQ(halvex.request("Open", {QStringList("file:///x")}), "Halvex cannot open files");
    EXPECT_EQ(halvex.request("ActivateAction", {"dance", QVariantList()}),
              "unknown action \"dance\": use \"calculator\"");
    EXPECT_FALSE(isShown()) << "a hidden window stays hidden";
    EXPECT_EQ(halvex.request("ActivateAction", {"calculator", QVariantList()}), "");
    EXPECT_TRUE(isShown());
    EXPECT_EQ(halvex.run(), 0);
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(halvex.isRunning());
}

TEST_F(Halvex, RingsWarningsAndQuitsAfterTheLastOne) {
    const auto folder = halvex.home() / "Library/Application Support/Quorvane Software/Halvex Pro";
    std::filesystem::create_directories(folder);
    const auto preferences = platform::makeFilePreferences(folder.string());
    warnings::WarningStore store(preferences->domain(HalvexRecurringTimers2File));
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    const warnings::WarningTime minute{warnings::WarningTime::Kind::Delay, 1};
    ASSERT_TRUE(store.add("Pizza", minute, now - 65));
    test::FakeNotificationServer server(*halvex.bus, {"body", "actions", "sound"});
    halvex.start();
    ASSERT_TRUE(server.hasCalls(1));
    EXPECT_THAT(server.calls.at(0),
                testing::MatchesRegex("0 alarm-symbolic\\|Pizza\\|.*\\|again,Again in 5 minutes"
                                      "\\|sound-name=alarm-clock-elapsed\\|stays"));
    server.emitSignal("ActionInvoked", {1U, "again"});
    server.emitSignal("NotificationClosed", {1U, 2U});
    EXPECT_TRUE(eventually([&] {
        const auto set = store.warnings();
        return set.size() == 1 && set[0].time.text() == "in 5 minutes" && set[0].since >= now;
    }));
    EXPECT_EQ(halvex.request("ActivateAction", {"calculator", QVariantList()}), "");
    store.remove({store.warnings().at(0).identifier});
    QThread::msleep(2500);
    EXPECT_TRUE(halvex.isRunning()) << "its window is visible";
    EXPECT_EQ(halvex.stop(), 0) << halvex.log();

    ASSERT_TRUE(store.add("Tea", {}, now));
    halvex.start();
    const auto tea = store.warnings();
    ASSERT_EQ(tea.size(), 1U);
    EXPECT_FALSE(isShown());
    store.remove({tea[0].identifier});
    EXPECT_EQ(halvex.waitForExit(), 0) << halvex.log();
    EXPECT_EQ(server.calls.size(), 1U);
}

TEST_F(Halvex, QuitsWhenTheSessionBusDisconnectsAndDoesNotStartWithoutOne) {
    halvex.start();
    halvex.bus->kill();
    EXPECT_EQ(halvex.waitForExit(), 0);
    EXPECT_TRUE(halvex.logs("com.quorvanesoftware.Halvex quits: the session bus disconnected"));
    EXPECT_EQ(halvex.run({}, {}, {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}}), 1);
    EXPECT_TRUE(halvex.logs("Halvex cannot start: there is no session bus"));
}

TEST(Program, OpensItsStandardDescriptorsIfTheyAreClosed) {
    using test::ProgramProcess;
    const auto bar = "com.quorvanesoftware.MenuBar1";
    for (const auto& [file, name, interface] :
         {std::tuple(HALVEX_MENUBAR, "com.quorvanesoftware.MenuBar", bar),
          {HALVEX_PREFERENCES, "com.quorvanesoftware.Preferences", "com.quorvanesoftware.Window1"},
          {HALVEX_APPLICATION, "com.quorvanesoftware.Halvex", "com.quorvanesoftware.Window1"}}) {
        ProgramProcess program("sh", name, interface);
        program.start({"-c", "exec \"$0\" <&- >&- 2>&-", file});
        const auto descriptors =
            std::filesystem::path("/proc") / std::to_string(program.processId()) / "fd";
        for (const char* number : {"0", "1", "2"})
            EXPECT_EQ(std::filesystem::read_symlink(descriptors / number), "/dev/null")
                << file << ' ' << number;
    }
}

} // namespace
