#include "platform/UserNotifications.h"
#include "platform/runtime/LocalNotificationCenter.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using platform::Notification;
using platform::NotificationCenter;
using testing::ElementsAre;

namespace {

class Notifications : public testing::Test {
  protected:
    NotificationCenter::Handler recording(const std::string& line) {
        return [this, line](const Notification&) { calls.push_back(line); };
    }
    std::vector<std::string> post(const std::string& name) {
        center.post({.name = name, .object = {}, .userInfo = {}});
        return std::exchange(calls, {});
    }

    platform::LocalNotificationCenter center;
    std::vector<std::string> calls;
    std::shared_ptr<int> first = std::make_shared<int>();
    std::shared_ptr<int> second = std::make_shared<int>();
};

TEST_F(Notifications, CallTheObserversOfTheirNameInTheOrderTheyWereAdded) {
    center.addObserver(first, "a", recording("first a"));
    center.addObserver(second, "a", recording("second a"));
    center.addObserver(first, "b", recording("first b"));
    EXPECT_THAT(post("a"), ElementsAre("first a", "second a"));
    EXPECT_THAT(post("b"), ElementsAre("first b"));
    EXPECT_THAT(post("c"), ElementsAre());
    center.addObserver(first, "a", recording("again"));
    EXPECT_THAT(post("a"), ElementsAre("again", "second a"));
    center.removeObserver(first, "a");
    EXPECT_THAT(post("a"), ElementsAre("second a"));
    EXPECT_THAT(post("b"), ElementsAre("first b"));
}

TEST_F(Notifications, SkipObserversThatAnEarlierHandlerDestroysOrRemoves) {
    const auto third = std::make_shared<int>();
    center.addObserver(first, "a", [&](const Notification&) {
        calls.emplace_back("first");
        second.reset();
        center.removeObserver(third, "a");
    });
    center.addObserver(second, "a", recording("destroyed"));
    center.addObserver(third, "a", recording("removed"));
    EXPECT_THAT(post("a"), ElementsAre("first"));
    first.reset();
    EXPECT_THAT(post("a"), ElementsAre());
}

TEST_F(Notifications, AllowObserversToChangeWhileAnotherThreadPosts) {
    std::atomic<int> count = 0;
    std::atomic<bool> done = false;
    std::jthread posting([&] {
        while (!done)
            center.post({.name = "a", .object = {}, .userInfo = {}});
    });
    for (int round = 0; round < 200; ++round) {
        auto observer = std::make_shared<std::atomic<int>>(0);
        center.addObserver(observer, "a", [&, seen = observer.get()](const Notification&) {
            count += ++*seen > 0;
        });
        while (*observer == 0)
            std::this_thread::yield();
        if (round % 2 == 0)
            center.removeObserver(observer, "a");
    }
    done = true;
    EXPECT_GE(count, 200);
}

TEST(UserNotifications, AreLoggedOnceInAProgramThatCannotShowThem) {
    test::RecordingLog log;
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(platform::userNotifications().post({.title = "Title"}));
    EXPECT_THAT(log.take(),
                ElementsAre("notification \"Title\" not shown: this program cannot show "
                            "notifications"));
}

} // namespace
