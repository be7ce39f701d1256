#include "platform/qt/BarClient.h"

#include "tests/desktop/support/FakeService.h"
#include "tests/desktop/support/TestBundle.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <future>

using platform::qt::BarClient;
using namespace test;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

std::int32_t get(BarClient& client, const char* identifier = test::kOwnClock) {
    platform::MenuExtraReference reference = 4711;
    const std::int32_t status = client.getMenuExtra(identifier, reference);
    EXPECT_EQ(reference != 0, status == 0);
    return status;
}

/// Makes every call and returns their statuses; 0 is success.
std::vector<std::int32_t> callEverything(BarClient& client) {
    return {get(client), client.addMenuExtra("file:///x.menu", 999, 0, 0, 0, 0),
            client.removeMenuExtra(1, 0), client.listMenuExtras() ? 0 : -1,
            client.click("x", {}) ? 0 : -1};
}

TEST(BarClient, CallsEveryOperationOfARunningBar) {
    const auto bus = std::make_shared<PrivateBus>();
    BarProcess bar({}, {}, bus);
    BarClient client(bus->addressText());
    const std::string path = test::TestBundle(bar).path;
    EXPECT_EQ(get(client, kTestExtra), -1);
    ASSERT_TRUE(bar.loads(path, kTestExtra));
    EXPECT_EQ(get(client, kTestExtra), 0);
    const auto items = client.listMenuExtras();
    ASSERT_TRUE(items && items.value->size() == 2U) << items.reason;
    const auto& item = items.value->at(1);
    EXPECT_EQ(std::tie(item.identifier, item.path, item.position),
              std::tuple(kTestExtra, path, 999));
    EXPECT_GT(item.width, 0);
    const platform::Event event{.modifierFlags = platform::kShiftKeyMask, .clickCount = 2};
    EXPECT_EQ(client.click(kTestExtra, event).value, true) << "consumed";
    EXPECT_TRUE(bar.logs("click shift 2")) << bar.log();
    EXPECT_EQ(client.click(kTestExtra, {.buttonNumber = 3}).value, false);
    platform::MenuExtraReference reference = 0;
    client.getMenuExtra(kTestExtra, reference);
    EXPECT_EQ(client.removeMenuExtra(reference, 0), 0);
    EXPECT_EQ(client.removeMenuExtra(reference, 0), -1);
}

TEST(BarClient, FailsImmediatelyWithoutABusOrABarAndLogsTheReasonOnce) {
    const PrivateBus bus;
    const std::pair<std::string, const char*> cases[] = {
        {"unix:path=/no/such/bus", "cannot call the menu bar: there is no session bus"},
        {bus.addressText(), "cannot call the menu bar: "},
    };
    for (const auto& [address, reason] : cases) {
        test::RecordingLog log;
        BarClient client(address);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_THAT(callEverything(client), testing::Each(testing::Ne(0)));
        EXPECT_THAT(client.listMenuExtras().reason, StartsWith(reason));
        EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
        EXPECT_THAT(log.take(), testing::ElementsAre(StartsWith(reason)));
    }
}

TEST(BarClient, RejectsRepliesOfTheWrongType) {
    const PrivateBus bus;
    const test::FakeService bar(bus.connection(), "com.quorvanesoftware.MenuBar",
                                "/com/quorvanesoftware/MenuBar",
                                [](const auto&) { return QString("garbage"); });
    test::RecordingLog log;
    BarClient client(bus.addressText());
    // This thread runs the event loop, which answers.
    auto statuses = std::async(std::launch::async, [&] { return callEverything(client); });
    ASSERT_TRUE(eventually([&] { return statuses.wait_for(0s) == std::future_status::ready; }));
    EXPECT_THAT(statuses.get(), testing::Each(testing::Ne(0)));
    EXPECT_TRUE(log.contains("the menu bar returned \"s\" from GetMenuExtra instead of \"iu\""));
}

TEST(BarClient, NoticesABarThatHangsOrDiesDuringALoad) {
    const auto bus = std::make_shared<PrivateBus>();
    BarProcess bar({"--admit=all"}, {}, bus);
    const test::TestBundle extra(bar, "HangsAtStart");
    BarClient client(bus->addressText());
    EXPECT_EQ(bar.add(extra.path), 0) << "loading comes later";
    ASSERT_TRUE(bar.logs("hanging"));
    auto status = std::async(std::launch::async, [&] { return get(client, kTestExtra); });
    EXPECT_EQ(status.wait_for(200ms), std::future_status::timeout);
    BarClient other(bus->addressText());
    EXPECT_NE(get(other), 0) << "the first call waits for the timeout";
    auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(callEverything(other), testing::Each(testing::Ne(0)));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s) << "later calls do not wait";
    BarClient third(bus->addressText());
    EXPECT_NE(status.get(), 0);
    status = std::async(std::launch::async, [&] { return get(third, kTestExtra); });
    EXPECT_EQ(status.wait_for(200ms), std::future_status::timeout);
    start = std::chrono::steady_clock::now();
    bar.kill();
    EXPECT_NE(status.get(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    extra.replaceInInfo("HangsAtStart", kFaultless);
    bar.start();
    EXPECT_EQ(get(client), 0) << "the client finds the new bar";
}

volatile std::sig_atomic_t terminations = 0;

/// This process is the bar. It does not respond to the first signal.
TEST(HalvexctlStop, SendsASecondSignalToABarThatHangsAndReportsIt) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread sanitizer delivers signals late";
#endif
    const auto previous = std::signal(SIGTERM, [](int) { terminations = terminations + 1; });
    const PrivateBus bus;
    bus.connection().registerService("com.quorvanesoftware.MenuBar");
    QProcess ctl;
    ctl.setProcessEnvironment(environmentWith({{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}));
    ctl.start(HALVEX_CTL, {"menubar", "stop"});
    EXPECT_TRUE(eventually([] { return terminations == 2; }));
    bus.connection().unregisterService("com.quorvanesoftware.MenuBar");
    EXPECT_TRUE(ctl.waitForFinished(5000));
    EXPECT_EQ(ctl.exitCode(), 0);
    EXPECT_EQ(ctl.readAllStandardError(),
              "halvexctl: the menu bar did not respond and was forced to exit\n");
    std::signal(SIGTERM, previous);
}

} // namespace
