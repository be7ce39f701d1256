#include "testing/ManualLoginSession.h"
#include "testing/ManualWireless.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

using namespace platform;
using testing::ElementsAre;

namespace {

TEST(DefaultServices, HaveNoAdaptersAndASessionThatIsNeverLocked) {
    test::RecordingLog log;
    const auto adapters = wireless().observe([] { FAIL(); });
    const auto session = loginSession().observe([](auto) { FAIL(); });
    EXPECT_TRUE(adapters && session);
    EXPECT_EQ(wireless().status(), WirelessStatus{.isReady = true});
    EXPECT_TRUE(loginSession().isActive() && !loginSession().isLocked());
    wireless().scan();
    EXPECT_FALSE(wireless().setRadio(WirelessRadio::On) || wireless().disconnect("wlan0") ||
                 wireless().connect("wlan0", {}));
    EXPECT_EQ(log.take().size(), 3U);
}

TEST(FakeServices, ReplaceTheDefaultsAndNotifyTheirObservers) {
    halvextest::ManualWireless adapters;
    halvextest::ManualLoginSession session;
    std::vector<std::string> seen;
    auto first =
        wireless().observe([&] { seen.push_back(wireless().status().isRadioOn ? "on" : "off"); });
    const auto second = loginSession().observe([&](LoginSessionEvent) {
        seen.push_back(loginSession().isLocked() ? "locked" : "unlocked");
        seen.push_back(loginSession().isActive() ? "active" : "inactive");
    });
    adapters.show({.isReady = true, .isRadioOn = true});
    session.report(LoginSessionEvent::Locked);
    session.report(LoginSessionEvent::Deactivated);
    first.reset();
    adapters.show({});
    EXPECT_THAT(seen, ElementsAre("on", "locked", "active", "locked", "inactive"));
    EXPECT_FALSE(adapters.isObserved());
    EXPECT_TRUE(session.isObserved());
    EXPECT_TRUE(wireless().connect("wlan0", {.name = "Home"}));
    EXPECT_THAT(adapters.calls, ElementsAre("connect wlan0 Home"));
}

} // namespace
