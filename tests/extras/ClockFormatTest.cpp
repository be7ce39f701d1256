#include "extras/clock/ClockFormat.h"

#include <gtest/gtest.h>

namespace {

TEST(ClockFormat, WritesOutConversionsThatHideSeconds) {
    const std::pair<const char*, const char*> cases[] = {
        {"%T", "%H:%M:%S"}, {"%a %R", "%a %H:%M"}, {"%r", "%I:%M:%S %p"},
        {"%X", "%H:%M:%S"}, {"%%T", "%%T"},        {"100%", "100%"},
        {"", ""},           {"%q", "%q"},          {"%c", "%a %b %e %H:%M:%S %Y"},
    };
    for (const auto& [format, expanded] : cases)
        EXPECT_EQ(clock_format::expanded(format), expanded) << format;
}

TEST(ClockFormat, IsUsableWhenItShowsSomethingThatCanBeDrawn) {
    const std::pair<std::string, bool> cases[] = {
        {"%H:%M", true},
        {"%Z", true},
        {"\xC3\x9Chr %H", true},
        {"plain", true},
        {"", false},
        {"   ", false},
        {"%H\n%M", false},
        {"%H\xFF", false},
        {"\xC3", false},
        {std::string(256, 'x'), true},
        {std::string(257, 'x'), false},
        {std::string("%H\0%M", 5), false},
    };
    for (const auto& [format, usable] : cases)
        EXPECT_EQ(clock_format::isUsable(format), usable) << format;
}

} // namespace
