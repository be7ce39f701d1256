#include "platform/Guard.h"

#include "platform/Exception.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <stdexcept>

using platform::currentOwner;
using platform::runGuarded;
using testing::ElementsAre;

namespace {

TEST(Guard, CatchesWhateverIsThrownAndKnowsWhoseCodeItWas) {
    test::RecordingLog log;
    EXPECT_TRUE(runGuarded("outer", [] {
        EXPECT_FALSE(runGuarded("a", [] { throw platform::Exception("Name", "reason"); }));
        EXPECT_FALSE(runGuarded("b", [] {
            EXPECT_EQ(currentOwner(), "b");
            throw std::runtime_error("what");
        }));
        EXPECT_EQ(currentOwner(), "outer");
    }));
    EXPECT_EQ(currentOwner(), "");
    EXPECT_FALSE(runGuarded("", [] { throw 5; }));
    EXPECT_THAT(log.take(), ElementsAre("a raised an exception: Name   reason: reason",
                                        "b raised an exception: std::exception   reason: what",
                                        "this program raised an exception: unknown   "
                                        "reason: (null)"));
}

} // namespace
