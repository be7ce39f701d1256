#include "platform/Graphics.h"

#include "platform/Exception.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

constexpr Shadow kShadow{.offset = {2, 2}, .blurRadius = 1.5};

TEST(AttributedString, ARangeGetsItsAttributesAndTheRestKeepsItsOwn) {
    AttributedString text("abcdef", {.font = Font{.family = "Serif"}});
    text.addShadow(kShadow, 1, 2);
    text.setAttributes({.foregroundColor = Color{1, 0, 0}}, 2, 3);
    std::size_t covered = 0;
    std::string kinds;
    for (const auto& run : text.runs()) {
        EXPECT_EQ(run.location, covered);
        covered += run.length;
        kinds += run.attributes.font ? 'f' : '-';
        kinds += run.attributes.shadow ? 's' : '-';
        kinds += run.attributes.foregroundColor ? 'c' : '-';
        kinds += std::to_string(run.length) + ' ';
    }
    EXPECT_EQ(covered, text.length());
    EXPECT_EQ(kinds, "f--1 fs-1 --c1 --c2 f--1 ");
}

TEST(AttributedString, RefusesARangeBeyondItsEnd) {
    AttributedString text("abc");
    text.addShadow(kShadow, 3, 0);
    EXPECT_EQ(text, AttributedString("abc"));
    EXPECT_THROW(text.addShadow(kShadow, 0, 4), Exception);
    EXPECT_THROW(text.addShadow(kShadow, 4, 0), Exception);
    EXPECT_THROW(text.setAttributes({}, 2, static_cast<std::size_t>(-1)), Exception);
    EXPECT_EQ(text, AttributedString("abc"));
}

} // namespace
