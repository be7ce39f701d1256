#include "extras/clock/ClockFormat.h"

#include <gtest/gtest.h>

namespace {

TEST(ClockFormat, WritesOutConversionsThatHideSeconds) {
    const std::pair<const char*, const char*> cases[] = {
        {"%T", "%H:%M:%S"}, {"%a %R", "%a %H:%M"}, {"%r", "%I:%M:%S %p"},
        {"%%T", "%%T"},     {"100%", "100%"},      {"%c", "%a %b %e %H:%M:%S %Y"}};
    for (const auto& [format, expanded] : cases)
        EXPECT_EQ(clock_format::expanded(format), expanded) << format;
}

TEST(ClockFormat, IsUsableWhenItShowsSomethingThatCanBeDrawn) {
    for (const std::string& format :
         {std::string("%Z"), std::string("\xC3\x9Chr %H"), std::string(256, 'x')})
        EXPECT_TRUE(clock_format::isUsable(format)) << format;
    for (const std::string& format :
         {std::string(), std::string("   "), std::string("%H\n%M"), std::string("%H\xFF"),
          std::string(257, 'x'), std::string("%H\0%M", 5)})
        EXPECT_FALSE(clock_format::isUsable(format)) << format;
}

} // namespace
