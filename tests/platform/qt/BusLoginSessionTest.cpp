#include "platform/qt/BusLoginSession.h"

#include "platform/posix/Descriptor.h"
#include "tests/desktop/support/FakeService.h"
#include "tests/platform/qt/DBusMock.h"
#include "tests/platform/qt/MainLoop.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/socket.h>
#include <sys/un.h>

using namespace platform;
using test::eventuallyWithoutBlocking;
using testing::IsEmpty;

namespace {

constexpr const char* kName = "org.freedesktop.login1";
constexpr const char* kPath = "/org/freedesktop/login1";
constexpr const char* kManager = "org.freedesktop.login1.Manager";
constexpr const char* kSession = "org.freedesktop.login1.Session";

struct LogindMock : test::DBusMock {
    explicit LogindMock(const test::PrivateBus& bus) : DBusMock(bus, "logind", kName, kPath) {
        for (const char* id : {"auto", "c1"})
            control("AddSession", {id, "seat0", 1000U, "user", true});
    }
    void callSession(const QString& id, const QString& member, const QVariantList& arguments = {}) {
        call(QString(kPath) + "/session/" + id, kSession, member, arguments);
    }
    void setActive(bool isActive) {
        call(QString(kPath) + "/session/c1", "org.freedesktop.DBus.Properties", "Set",
             {kSession, "Active", QVariant::fromValue(QDBusVariant(isActive))});
    }
    bool hasInhibitor() {
        const auto reply = call(kPath, kManager, "ListInhibitors");
        const auto inhibitors = reply.arguments().at(0).value<QDBusArgument>();
        inhibitors.beginArray();
        return !inhibitors.atEnd();
    }
};

class BusLoginSessionTest : public testing::Test {
  protected:
    void observe() {
        watch = session.observe([this](LoginSessionEvent event) {
            static constexpr const char* kNames[] = {"locked",      "unlocked",   "activated",
                                                     "deactivated", "will sleep", "did wake"};
            events.emplace_back(kNames[static_cast<int>(event)]);
        });
    }
    bool happens(const std::vector<std::string>& expected) {
        const bool result = eventuallyWithoutBlocking([&] { return events == expected; });
        EXPECT_EQ(events, expected);
        events.clear();
        return result;
    }
    bool logs(const std::string& part) {
        return eventuallyWithoutBlocking([&] { return log.contains(part); });
    }

    test::MainLoop mainLoop;
    test::ScopedEnvironment id{"XDG_SESSION_ID", "c1"};
    test::RecordingLog log;
    test::PrivateBus bus;
    platform::qt::BusLoginSession session{bus.addressText()};
    std::unique_ptr<Watch> watch;
    std::vector<std::string> events;
};

TEST_F(BusLoginSessionTest, ReportsTheEventsOfItsSession) {
    LogindMock logind(bus);
    logind.callSession("c1", "SetLockedHint", {true});
    EXPECT_FALSE(session.isLocked());
    observe();
    ASSERT_TRUE(happens({"locked"}));
    EXPECT_TRUE(session.isLocked());
    logind.callSession("auto", "Unlock");
    logind.callSession("c1", "Lock");
    logind.callSession("c1", "SetLockedHint", {false});
    logind.setActive(false);
    ASSERT_TRUE(happens({"unlocked", "deactivated"}));
    EXPECT_FALSE(session.isActive());
    logind.setActive(true);
    logind.callSession("c1", "Lock");
    logind.callSession("c1", "Unlock");
    ASSERT_TRUE(happens({"activated", "locked", "unlocked"}));
    EXPECT_TRUE(session.isActive());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(BusLoginSessionTest, DelaysSleepUntilTheObserversHaveBeenNotified) {
    LogindMock logind(bus);
    observe();
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(eventuallyWithoutBlocking([&] { return logind.hasInhibitor(); }));
        logind.emitSignal(kManager, "PrepareForSleep", "b", {true});
        ASSERT_TRUE(happens({"will sleep"}));
        EXPECT_TRUE(eventuallyWithoutBlocking([&] { return !logind.hasInhibitor(); }));
        logind.emitSignal(kManager, "PrepareForSleep", "b", {false});
        ASSERT_TRUE(happens({"did wake"}));
    }
    const auto connections = test::connectionCount(bus);
    watch.reset();
    EXPECT_TRUE(eventuallyWithoutBlocking(
        [&] { return test::connectionCount(bus) < connections && !logind.hasInhibitor(); }));
}

TEST_F(BusLoginSessionTest, ASessionThatLogindDoesNotKnowStillSleeps) {
    const test::ScopedEnvironment none("XDG_SESSION_ID", std::nullopt);
    test::DBusMock logind(bus, "logind", kName, kPath);
    observe();
    ASSERT_TRUE(logs("lock of the session is not noticed: "));
    logind.emitSignal(kManager, "PrepareForSleep", "b", {true});
    EXPECT_TRUE(happens({"will sleep"}));
    EXPECT_EQ(log.take().size(), 1U);
}

TEST_F(BusLoginSessionTest, IsReportedAgainWhenLogindStartsLater) {
    observe();
    ASSERT_TRUE(logs("lock and sleep are not noticed: logind is not running"));
    for (int i = 0; i < 2; ++i) {
        LogindMock logind(bus);
        EXPECT_TRUE(eventuallyWithoutBlocking([&] { return logind.hasInhibitor(); }));
        // Not the signals: they are missed until the session has been found.
        logind.callSession("c1", "SetLockedHint", {i == 0});
        ASSERT_TRUE(happens({i == 0 ? "locked" : "unlocked"}));
        log.take();
        logind.kill();
        ASSERT_TRUE(logs("lock and sleep are not noticed: logind has exited"));
    }
    EXPECT_EQ(log.take().size(), 1U);
}

/// Until the bus replies, Qt blocks all other connections of the process.
TEST_F(BusLoginSessionTest, ABusThatDoesNotReplyBlocksNoOther) {
    const test::TemporaryFolder folder;
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    folder.file("bus").copy(name.sun_path, sizeof name.sun_path - 1);
    const posix::Descriptor silent(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(silent.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    ASSERT_EQ(listen(silent.get(), 1), 0);
    platform::qt::BusLoginSession hung("unix:path=" + folder.file("bus"),
                                       std::chrono::milliseconds(300));
    const auto hungWatch = hung.observe([](auto) {});
    ASSERT_TRUE(eventuallyWithoutBlocking([&] {
        QDBusConnection("unknown").isConnected();
        return log.contains("lock and sleep are not noticed: there is no system bus");
    }));
}

TEST_F(BusLoginSessionTest, LogindThatHangsDiesOrRepliesGarbageIsLoggedOnce) {
    LogindMock logind(bus);
    logind.suspend();
    platform::qt::BusLoginSession hung(bus.addressText(), std::chrono::milliseconds(300));
    const auto hungWatch = hung.observe([](auto) {});
    ASSERT_TRUE(logs("lock of the session is not noticed: "));
    logind.kill();
    ASSERT_TRUE(logs("lock and sleep are not noticed: logind has exited"));
    EXPECT_EQ(log.take().size(), 2U);

    auto peer = QDBusConnection::connectToBus(bus.address(), "garbage");
    test::FakeService garbage(peer, kName, kPath, [](const auto&) { return "garbage"; });
    observe();
    ASSERT_TRUE(logs("lock of the session is not noticed: its reply has the signature \"s\""));
    peer.send(QDBusMessage::createSignal(kPath, kManager, "PrepareForSleep"));
    EXPECT_TRUE(happens({}));
    QDBusConnection::disconnectFromBus("garbage");
}

} // namespace
