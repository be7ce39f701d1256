#include "platform/Applications.h"

#include "testing/ManualApplications.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Applications, WithoutADesktopThereAreNone) {
    test::RecordingLog log;
    platform::Applications& none = platform::applications();
    const auto watch = none.observe([] { FAIL(); });
    EXPECT_TRUE(watch);
    EXPECT_THAT(none.running(), IsEmpty());
    EXPECT_FALSE(none.launch("a.desktop"));
    EXPECT_FALSE(none.activate("a.desktop"));
    EXPECT_THAT(log.take(), ElementsAre("applications are not listed: this program has no desktop",
                                        "cannot launch a.desktop: this program has no desktop"));
}

TEST(ManualApplications, StandInForTheDesktops) {
    halvextest::ManualApplications fake;
    platform::Applications& service = platform::applications();
    int calls = 0;
    std::unique_ptr<platform::Watch> watch = service.observe([&] {
        ++calls;
        watch.reset();
    });
    EXPECT_TRUE(fake.isObserved());
    for (int i = 0; i < 2; ++i)
        fake.setRunning({{.identifier = "a.desktop", .windows = {{.identifier = 7}}}});
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(fake.isObserved());
    fake.installed = {{.identifier = "a.desktop", .name = "A"}};
    EXPECT_TRUE(service.hide("a.desktop") && service.activateWindow(7) &&
                service.launch("a.desktop", {"/x"}));
    EXPECT_FALSE(service.quit("b") || service.activateWindow(8) || service.launch("b.desktop"));
    EXPECT_THAT(fake.requests,
                ElementsAre("hide a.desktop", "activate window 7", "launch a.desktop /x"));
}

} // namespace
