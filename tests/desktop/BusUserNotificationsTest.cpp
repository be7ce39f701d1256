#include "platform/qt/BusUserNotifications.h"

#include "platform/base/Exception.h"
#include "platform/runtime/Guard.h"
#include "tests/desktop/support/FakeNotificationServer.h"
#include "tests/desktop/support/TestBundle.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace platform;
using test::eventually;
using test::FakeNotificationServer;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class BusUserNotificationsTest : public testing::Test {
  protected:
    void startServer(const QStringList& capabilities = {"body", "actions"},
                     std::uint32_t firstId = 1) {
        server.reset();
        server = std::make_unique<FakeNotificationServer>(bus, capabilities, firstId);
    }
    /// Posts a notification whose handler records its title and the action.
    bool post(const std::string& key, const std::string& title, const std::string& body = {}) {
        return notifications->post({.key = key,
                                    .title = title,
                                    .body = body,
                                    .icon = "dialog-warning",
                                    .actions = {{kDefaultAction, "Show"}, {"undo", "Undo"}},
                                    .observer = self,
                                    .handler = [this, title](const std::string& action) {
                                        chosen.push_back(currentOwner() + title + ' ' + action);
                                        EXPECT_EQ(QThread::currentThread(),
                                                  QCoreApplication::instance()->thread());
                                        throw Exception("Test", "thrown by the handler");
                                    }});
    }
    /// Posts a notification and waits until it is shown, as its only one with this title.
    void show(const std::string& key, const std::string& title) {
        const std::size_t count = server->calls.size();
        EXPECT_TRUE(post(key, title));
        EXPECT_TRUE(server->hasCalls(count + 1));
    }
    /// Chooses an action of each notification, and waits until the last handler has run.
    void choose(const std::vector<std::pair<std::uint32_t, QString>>& actions) {
        const std::size_t count = chosen.size();
        for (const auto& [id, action] : actions)
            server->emitSignal("ActionInvoked", {id, action});
        EXPECT_TRUE(eventually([&] { return chosen.size() > count; }));
    }

    test::PrivateBus bus;
    test::RecordingLog log;
    std::unique_ptr<FakeNotificationServer> server;
    std::shared_ptr<int> self = std::make_shared<int>();
    std::vector<std::string> chosen;
    std::optional<platform::qt::BusUserNotifications> notifications{bus.addressText()};
};

TEST_F(BusUserNotificationsTest, AreShownAsFarAsTheServerCan) {
    struct Row {
        QStringList capabilities;
        std::string shown;
    };
    for (const auto& [capabilities, shown] :
         std::vector<Row>{{{"body"}, "0 dialog-warning|ä|a < b & c|"},
                          {{"body-markup"}, "0 dialog-warning|ä|a &lt; b &amp; c|"},
                          {{"actions"}, "0 dialog-warning|ä|a < b & c|default,Show,undo,Undo"}}) {
        notifications.emplace(bus.addressText());
        startServer(capabilities);
        EXPECT_TRUE(post("", "ä", "a < b & c"));
        EXPECT_TRUE(server->hasCalls(1));
        EXPECT_THAT(server->calls, ElementsAre(shown));
    }
    notifications->post({.title = "t", .icon = "/a b.png"});
    EXPECT_TRUE(server->hasCalls(2));
    EXPECT_EQ(server->calls.back(), "0 file:///a%20b.png|t||");
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(BusUserNotificationsTest, StayAndHaveASoundThatIsPlayedWithoutTheServerIfNecessary) {
    const test::TemporaryFolder programs;
    const test::ScopedEnvironment path("PATH", programs.path().string());
    startServer({"sound"});
    const std::vector<std::pair<std::optional<std::string>, std::string>> hints{
        {std::nullopt, ""},
        {"", "|suppress-sound=true"},
        {"complete", "|sound-name=complete"},
        {"/a b.oga", "|sound-file=/a b.oga"}};
    for (const auto& [sound, hint] : hints) {
        notifications->post({.title = "t", .sound = sound, .staysVisible = true});
        EXPECT_TRUE(server->hasCalls(1));
        EXPECT_THAT(server->calls, ElementsAre("0 |t||" + hint + "|stays"));
        server->calls.clear();
    }
    EXPECT_EQ(log.beeps(), 0);
    startServer({});
    for (const auto& [sound, hint] : hints)
        EXPECT_TRUE(eventually(
            [&, sound = sound] { return notifications->post({.title = "t", .sound = sound}); }));
    EXPECT_TRUE(eventually([&] { return log.beeps() == 2; })) << "there is no program to play them";
    const std::string played = programs.file("played");
    programs.write("canberra-gtk-play", "#!/bin/sh\necho \"$@\" >" + played);
    std::filesystem::permissions(programs.file("canberra-gtk-play"),
                                 std::filesystem::perms::owner_all);
    notifications->post({.title = "t", .sound = "complete"});
    const auto text = [&] {
        std::string line;
        std::getline(std::ifstream(played) >> std::ws, line);
        return line;
    };
    EXPECT_TRUE(eventually([&] { return text() == "--id=complete"; })) << text();
}

TEST_F(BusUserNotificationsTest, ReportThatTheyAreShownAndClosed) {
    std::vector<std::string> events;
    const auto report = [&](const std::string& title) {
        return UserNotification{.key = title,
                                .title = title,
                                .observer = self,
                                .eventHandler = [&events, title](UserNotificationEvent event) {
                                    const bool isShown = event == UserNotificationEvent::Shown;
                                    events.push_back(title + (isShown ? " shown" : " closed"));
                                }};
    };
    const auto has = [&](const std::string& event) {
        return eventually([&] { return !events.empty() && events.back() == event; });
    };
    startServer();
    notifications->post(report("one"));
    EXPECT_TRUE(has("one shown"));
    notifications->post(report("two"));
    EXPECT_TRUE(has("two shown"));
    notifications->withdraw("two");
    server->emitSignal("NotificationClosed", {2U, 3U});
    server->emitSignal("NotificationClosed", {1U, 2U});
    EXPECT_TRUE(has("one closed"));
    server->refuses = true;
    notifications->post(report("refused"));
    EXPECT_TRUE(has("refused closed"));
    server->refuses = false;
    notifications->post(report("three"));
    EXPECT_TRUE(has("three shown"));
    server.reset();
    EXPECT_TRUE(has("three closed")) << "with its server";
    EXPECT_EQ(events.size(), 6U);
}

TEST_F(BusUserNotificationsTest, AreReplacedAndWithdrawnByTheKeyOfTheirOwner) {
    startServer();
    const auto byOther = [&](const std::function<void()>& code) { runGuarded("other", code); };
    byOther([&] { show("k", "of other"); });
    show("k", "first");
    show("k", "second");
    show("", "without key");
    show("", "without key");
    notifications->withdraw("k");
    notifications->withdraw("k");
    notifications->withdraw("");
    byOther([&] { notifications->withdraw("k"); });
    EXPECT_TRUE(server->hasCalls(7));
    show("k", "last");
    const std::string start = "dialog-warning|", end = "||default,Show,undo,Undo";
    EXPECT_THAT(server->calls,
                ElementsAre("0 " + start + "of other" + end, "0 " + start + "first" + end,
                            "2 " + start + "second" + end, "0 " + start + "without key" + end,
                            "0 " + start + "without key" + end, "close 2", "close 1",
                            "0 " + start + "last" + end));
}

TEST_F(BusUserNotificationsTest, ChangesDuringARequestAreMadeAfterIt) {
    startServer();
    post("replaced", "1");
    post("replaced", "2");
    post("withdrawn", "3");
    EXPECT_TRUE(server->hasCalls(2)) << "both are being sent";
    post("replaced", "4");
    notifications->withdraw("replaced");
    post("replaced", "5");
    notifications->withdraw("withdrawn");
    EXPECT_TRUE(server->hasCalls(4));
    const std::string end = "||default,Show,undo,Undo";
    EXPECT_THAT(server->calls, ElementsAre("0 dialog-warning|2" + end, "0 dialog-warning|3" + end,
                                           "1 dialog-warning|5" + end, "close 2"));
}

TEST_F(BusUserNotificationsTest, HandlersRunForTheOfferedActionsUntilTheNotificationCloses) {
    startServer();
    runGuarded("owner ", [&] { show("1", "one"); });
    show("2", "two");
    choose({{99, "undo"}, {1, "other"}, {1, "undo"}, {2, "default"}});
    EXPECT_TRUE(eventually([&] { return chosen.size() == 2; }));
    for (const std::uint32_t reason : {1U, 2U, 3U, 4U}) {
        show("", "closed");
        server->emitSignal("NotificationClosed", {2 + reason, reason});
        choose({{2 + reason, "undo"}, {2, "undo"}});
    }
    EXPECT_THAT(chosen, ElementsAre("owner one undo", "two default", "two undo", "two undo",
                                    "two undo", "two undo"));
    EXPECT_THAT(log.take(), testing::Contains("owner  raised an exception: Test   reason: "
                                              "thrown by the handler"));
}

TEST_F(BusUserNotificationsTest, HandlersOfDestroyedObserversAreNotCalled) {
    startServer();
    show("1", "one");
    const auto code = std::make_shared<int>(); // stands for the loaded code of a handler
    self = std::make_shared<int>();
    notifications->post({.key = "2", .observer = self, .handler = [code](const auto&) { FAIL(); }});
    notifications->post({.title = "without handler"});
    EXPECT_TRUE(server->hasCalls(3));
    self = std::make_shared<int>();
    show("4", "four");
    choose({{1, "undo"}, {2, "undo"}, {4, "undo"}});
    EXPECT_THAT(chosen, ElementsAre("four undo"));
    notifications->removeExpired();
    EXPECT_EQ(code.use_count(), 1);
    EXPECT_TRUE(server->hasCalls(6));
    server->calls.erase(server->calls.begin(), server->calls.begin() + 4);
    EXPECT_THAT(server->calls, ElementsAre("close 1", "close 2"));
}

TEST_F(BusUserNotificationsTest, AServerThatRestartsForgetsItsNotifications) {
    startServer();
    show("old", "old");
    startServer({"actions"}, 1);
    EXPECT_TRUE(eventually([&] { return post("new", "new") && server->hasCalls(1); }));
    choose({{1, "undo"}});
    show("old", "old again");
    EXPECT_EQ(server->calls.back(), "0 dialog-warning|old again||default,Show,undo,Undo");
    EXPECT_THAT(chosen, ElementsAre("new undo"));
}

TEST_F(BusUserNotificationsTest, FailuresAreLogged) {
    EXPECT_FALSE(post("k", "lost"));
    EXPECT_FALSE(post("k", "lost"));
    EXPECT_THAT(log.take(),
                ElementsAre("notifications are not shown: there is no notification server"));
    startServer();
    server->refuses = true;
    EXPECT_TRUE(post("k", "refused"));
    EXPECT_TRUE(eventually([&] { return log.contains("notification \"refused\" not shown: "); }));
    server->refuses = false;
    show("k", "shown");
    bus.kill();
    EXPECT_TRUE(eventually([&] { return !post("k", "lost"); }));
}

TEST(BarNotifications, AreWithdrawnBeforeTheirItemIsUnloaded) {
    const test::BarProcess bar;
    FakeNotificationServer server(*bar.bus, {});
    const test::TestBundle bundle(bar, "NotifiesWhenClicked");
    ASSERT_TRUE(bar.loads(bundle.path, test::kTestExtra));
    bar.click(test::kTestExtra);
    EXPECT_TRUE(server.hasCalls(1));
    EXPECT_EQ(bar.remove(test::kTestExtra), 0);
    EXPECT_TRUE(server.hasCalls(2));
    EXPECT_THAT(server.calls, ElementsAre("0 |Test||", "close 1"));
}

} // namespace
