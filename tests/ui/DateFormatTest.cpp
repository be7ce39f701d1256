#include "ui/NSMutableString-DateFormat.h"

#include "tests/support/RecordingLog.h"

#include <gtest/gtest.h>

#include <random>

using namespace HalvexDateFormat;

namespace {

TEST(DateFormat, FillsItsOwnPlaceholdersAndRefusesValuesThatWouldNeverEnd) {
    // std::nullopt where the value is refused and the format stays unchanged.
    const std::tuple<std::string, std::string, std::optional<std::string>> weeks[] = {
        {"Week %W of %Y", "07", "Week 07 of %Y"},
        {"%w %Z W%", "5", "%w %Z W%"},
        {"[%W]", "", "[]"},
        {"%%WW", "", ""},
        {std::string("\0%W\xFF", 4), "\xC3", std::string("\0\xC3\xFF", 3)},
        {"Week %W", "%W", {}},
        {"%W", "a%Wb", {}},
        {"no placeholder", "%W", {}},
        {"%%WW", "WW%%", {}},
    };
    for (const auto& [format, value, filled] : weeks) {
        test::RecordingLog log;
        std::string changed = format;
        EXPECT_EQ(&fixWeekNum(changed, value), &changed);
        EXPECT_EQ(changed, filled.value_or(format));
        EXPECT_EQ(log.contains("value \"" + value + "\" would replace %W without end"), !filled);
    }
    std::string time = "%H:%M %Z, %z %W";
    EXPECT_EQ(fixTimeZone(time, "%W"), "%H:%M %W, %z %W") << "the other placeholder is plain text";
}

/// The reference: searches from the start after each replacement.
std::string filledBySearchingFromTheStart(std::string format, const std::string& value) {
    for (auto at = format.find("%Z"); at != std::string::npos; at = format.find("%Z"))
        format.replace(at, 2, value);
    return format;
}

TEST(DateFormat, ReplacesPlaceholdersThatValuesFormWithTheirNeighbours) {
    std::mt19937 random(5);
    const auto pick = [&](std::string_view letters, std::size_t length) {
        std::string text;
        for (std::size_t i = 0; i < length; ++i)
            text += letters[random() % letters.size()];
        return text;
    };
    for (int i = 0; i < 20'000; ++i) {
        std::string format = pick("%Z%Za", random() % 12);
        const std::string value = pick("%Za", random() % 4);
        if (value.find("%Z") != std::string::npos)
            continue; // never ends; longer values that do not end are not generated
        const std::string expected = filledBySearchingFromTheStart(format, value);
        ASSERT_EQ(fixTimeZone(format, value), expected) << value;
    }
}

} // namespace
