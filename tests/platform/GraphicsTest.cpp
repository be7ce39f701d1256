#include "platform/Graphics.h"

#include "platform/Exception.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(AttributedString, RefusesARangeBeyondItsEnd) {
    AttributedString text("abc");
    text.addShadow({}, 3, 0);
    EXPECT_EQ(text, AttributedString("abc"));
    EXPECT_THROW(text.addShadow({}, 4, 0), Exception);
    EXPECT_THROW(text.setAttributes({}, 2, static_cast<std::size_t>(-1)), Exception);
    EXPECT_EQ(text, AttributedString("abc"));
}

} // namespace
