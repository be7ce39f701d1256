#include "menubar/HalvexMenuExtraBase.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"

#include <gtest/gtest.h>

namespace {

TEST(UnboundLibrary, IsLoggedAndDoesNotStopTheItem) {
    test::RecordingLog log;
    test::RecordingHost host;
    test::RecordingGraphics graphics;
    const auto extra = std::make_shared<HalvexMenuExtraBase>();
    EXPECT_EQ(extra->initWithBundle(std::make_shared<platform::Bundle>(
                  "/Test.menu", platform::PropertyList::Dictionary())),
              extra);
    EXPECT_TRUE(log.contains("\n\nHalvexMenuExtraBase mising Halvex Library\n\n"));
    EXPECT_EQ(extra->attributedTitle()->string(), "-");
}

} // namespace
