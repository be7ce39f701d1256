#include "platform/runtime/LocalNotificationCenter.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using platform::Notification;
using platform::NotificationCenter;
using testing::ElementsAre;

namespace {

Notification named(const std::string& name) {
    return {.name = name, .object = {}, .userInfo = {}};
}

class Notifications : public testing::Test {
  protected:
    NotificationCenter::Handler writing(const std::string& line) {
        return [this, line](const Notification&) { heard.push_back(line); };
    }
    std::vector<std::string> post(const std::string& name) {
        center.post(named(name));
        return std::exchange(heard, {});
    }

    platform::LocalNotificationCenter center;
    std::vector<std::string> heard;
    std::shared_ptr<int> first = std::make_shared<int>();
    std::shared_ptr<int> second = std::make_shared<int>();
};

TEST_F(Notifications, GoToThoseWhoObserveTheNameInTheirOrder) {
    center.addObserver(first, "a", writing("first a"));
    center.addObserver(second, "a", writing("second a"));
    center.addObserver(first, "b", writing("first b"));
    EXPECT_THAT(post("a"), ElementsAre("first a", "second a"));
    EXPECT_THAT(post("b"), ElementsAre("first b"));
    EXPECT_THAT(post("c"), ElementsAre());
    center.addObserver(first, "a", writing("again"));
    EXPECT_THAT(post("a"), ElementsAre("again", "second a"));
    center.removeObserver(first, "a");
    EXPECT_THAT(post("a"), ElementsAre("second a"));
    EXPECT_THAT(post("b"), ElementsAre("first b"));
}

TEST_F(Notifications, SpareObserversThatGoOrAreTakenOutMeanwhile) {
    const auto third = std::make_shared<int>();
    center.addObserver(first, "a", [&](const Notification&) {
        heard.emplace_back("first");
        second.reset();
        center.removeObserver(third, "a");
    });
    center.addObserver(second, "a", writing("gone"));
    center.addObserver(third, "a", writing("taken out"));
    EXPECT_THAT(post("a"), ElementsAre("first"));
    first.reset();
    EXPECT_THAT(post("a"), ElementsAre());
}

TEST_F(Notifications, ComeAndGoOnSeveralThreadsAtOnce) {
    std::atomic<int> calls = 0;
    std::atomic<bool> done = false;
    std::jthread posting([&] {
        while (!done)
            center.post(named("a"));
    });
    for (int round = 0; round < 200; ++round) {
        auto observer = std::make_shared<std::atomic<int>>(0);
        center.addObserver(observer, "a", [&, seen = observer.get()](const Notification&) {
            calls += ++*seen > 0;
        });
        while (*observer == 0)
            std::this_thread::yield();
        if (round % 2 == 0)
            center.removeObserver(observer, "a");
    }
    done = true;
    EXPECT_GE(calls, 200);
}

} // namespace
