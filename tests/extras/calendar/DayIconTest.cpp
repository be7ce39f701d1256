#include "extras/HalvexDateCalMenu/DayIcon.h"
#include "testing/RecordingGraphics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>

namespace {

TEST(DayIcon, IsADifferentTemplateForEachDayWithAllDotsOnTheGridAndOnThePage) {
    halvextest::RecordingGraphics graphics;
    std::set<std::vector<std::string>> icons;
    for (int day = 1; day <= 31; ++day) {
        graphics.drawn.clear();
        const auto icon = extras::dayIcon(day);
        ASSERT_TRUE(icon && icon->isTemplate());
        for (const std::string& line : graphics.drawn) {
            if (!line.starts_with("fill "))
                continue;
            std::istringstream words(line.substr(5));
            double x = 0, y = 0, width = 0, height = 0;
            words >> x >> y >> width >> height;
            for (const double number : {x, y, width, height})
                EXPECT_EQ(std::fmod(number, 2), 0) << line;
            EXPECT_TRUE(x >= 2 && y >= 2 && x + width <= icon->size().width - 2 &&
                        y + height <= icon->size().height)
                << line;
        }
        icons.insert(graphics.drawn);
    }
    EXPECT_EQ(icons.size(), 31U);
}

} // namespace
