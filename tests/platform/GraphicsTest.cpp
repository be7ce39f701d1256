#include "platform/Graphics.h"

#include "platform/Exception.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

const Shadow kShadow{.offset = {2, 2}, .blurRadius = 1.5};

TEST(AttributedString, ARangeGetsItsAttributesAndTheRestKeepsItsOwn) {
    AttributedString text("abcdef", {.font = Font{.family = "Serif"}});
    text.addShadow(kShadow, 1, 2);
    text.setAttributes({.foregroundColor = Color{1, 0, 0}}, 2, 3);
    std::string kinds;
    for (const auto& run : text.runs()) {
        kinds += std::to_string(run.location);
        kinds += run.attributes.font ? 'f' : '-';
        kinds += run.attributes.shadow ? 's' : '-';
        kinds += run.attributes.foregroundColor ? 'c' : '-';
        kinds += ' ';
    }
    EXPECT_EQ(kinds, "0f-- 1fs- 2--c 3--c 5f-- ");
}

TEST(AttributedString, RefusesARangeBeyondItsEnd) {
    AttributedString text("abc");
    text.addShadow(kShadow, 3, 0);
    EXPECT_EQ(text, AttributedString("abc"));
    EXPECT_THROW(text.addShadow(kShadow, 4, 0), Exception);
    EXPECT_THROW(text.setAttributes({}, 2, static_cast<std::size_t>(-1)), Exception);
    EXPECT_EQ(text, AttributedString("abc"));
}

} // namespace
