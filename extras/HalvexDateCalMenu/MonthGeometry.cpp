#include "extras/HalvexDateCalMenu/MonthGeometry.h"

#include <algorithm>
#include <cmath>

using platform::Point;
using platform::Rect;
using platform::Size;

namespace extras {
namespace {

// All in points.
constexpr double kMargin = 20; // aligns the heading with the titles of the menu
constexpr double kCellWidth = 36;
constexpr double kCellHeight = 32;
constexpr double kWeekNumberWidth = 26;
constexpr double kMonthGap = 24;
constexpr double kHeadingHeight = 40;
constexpr double kWeekdayHeight = 22;
constexpr double kButtonSide = 28;
constexpr double kDetailsGap = 8; // on both sides of the separator, and at the bottom
constexpr double kTitleHeight = 20;
constexpr double kSubtitleHeight = 18;
constexpr double kMoreGap = 4; // above the other lines
constexpr double kMoreHeight = 22;
constexpr double kGridHeight = kCellHeight * MonthLayout::kRows;
constexpr double kBelowHeadings = kHeadingHeight + kWeekdayHeight;

double weekNumberWidth(const MonthGeometry::Options& options) {
    return options.weekNumbers ? kWeekNumberWidth : 0;
}

bool contains(const Rect& rect, Point point) {
    return point.x >= rect.origin.x && point.x < rect.origin.x + rect.size.width &&
           point.y >= rect.origin.y && point.y < rect.origin.y + rect.size.height;
}

} // namespace

MonthGeometry::MonthGeometry(const Options& options, double width)
    : options_(options), size_(minimumSize(options)) {
    size_.width = std::max(size_.width, width);
}

Size MonthGeometry::minimumSize(const Options& options) {
    const double month = weekNumberWidth(options) + kCellWidth * MonthLayout::kColumns;
    const double more = options.moreLines > 0 ? kMoreGap + kMoreHeight * options.moreLines : 0;
    return {2 * kMargin + month * options.months + kMonthGap * (options.months - 1),
            kBelowHeadings + kGridHeight + 3 * kDetailsGap + kTitleHeight + kSubtitleHeight + more};
}

/// Returns a width in whole points, so that columns are drawn alike.
double MonthGeometry::cellWidth() const {
    const double gaps = kMonthGap * (options_.months - 1) + 2 * kMargin;
    const double month = (size_.width - gaps) / options_.months;
    return std::floor((month - weekNumberWidth(options_)) / MonthLayout::kColumns);
}

double MonthGeometry::monthLeft(int month) const {
    const double width = weekNumberWidth(options_) + cellWidth() * MonthLayout::kColumns;
    const double all = width * options_.months + kMonthGap * (options_.months - 1);
    return std::floor((size_.width - all) / 2) + (width + kMonthGap) * month;
}

Rect MonthGeometry::placed(double x, double y, double width, double height) const {
    return {{options_.rightToLeft ? size_.width - x - width : x, y}, {width, height}};
}

Rect MonthGeometry::heading(int month) const {
    const double inset = (cellWidth() - kButtonSide) / 2;
    const bool isLast = month == options_.months - 1;
    const double width = weekNumberWidth(options_) + cellWidth() * MonthLayout::kColumns -
                         (isLast ? kMonthButtons * kButtonSide : 0) - inset;
    return placed(monthLeft(month) + inset, top() - kHeadingHeight, width, kHeadingHeight);
}

Rect MonthGeometry::button(MonthButton button) const {
    const double end = monthLeft(options_.months - 1) + weekNumberWidth(options_) +
                       cellWidth() * MonthLayout::kColumns;
    return placed(end - (kMonthButtons - static_cast<int>(button)) * kButtonSide,
                  top() - (kHeadingHeight + kButtonSide) / 2, kButtonSide, kButtonSide);
}

Rect MonthGeometry::weekday(int month, int column) const {
    return placed(monthLeft(month) + weekNumberWidth(options_) + column * cellWidth(),
                  top() - kBelowHeadings, cellWidth(), kWeekdayHeight);
}

Rect MonthGeometry::weekNumber(int month, int row) const {
    return placed(monthLeft(month), top() - kBelowHeadings - (row + 1) * kCellHeight,
                  weekNumberWidth(options_), kCellHeight);
}

Rect MonthGeometry::cell(int month, int cell) const {
    const int row = cell / MonthLayout::kColumns;
    Rect rect = weekday(month, cell % MonthLayout::kColumns);
    rect.origin.y -= (row + 1) * kCellHeight;
    rect.size.height = kCellHeight;
    return rect;
}

Rect MonthGeometry::textLine(double belowGrid, double height) const {
    const double inset = monthLeft(0) + (cellWidth() - kButtonSide) / 2;
    return placed(inset, top() - kBelowHeadings - kGridHeight - belowGrid - height,
                  size_.width - 2 * inset, height);
}

Rect MonthGeometry::separator() const {
    return textLine(kDetailsGap, 1);
}

Rect MonthGeometry::title() const {
    return textLine(2 * kDetailsGap, kTitleHeight);
}

Rect MonthGeometry::subtitle() const {
    return textLine(2 * kDetailsGap + kTitleHeight, kSubtitleHeight);
}

Rect MonthGeometry::more(int line) const {
    return textLine(2 * kDetailsGap + kTitleHeight + kSubtitleHeight + kMoreGap +
                        line * kMoreHeight,
                    kMoreHeight);
}

MonthGeometry::Target MonthGeometry::targetAt(Point point) const {
    for (int i = 0; i < kMonthButtons; ++i)
        if (contains(button(static_cast<MonthButton>(i)), point))
            return {.button = static_cast<MonthButton>(i)};
    for (int month = 0; month < options_.months; ++month)
        for (int index = 0; index < MonthLayout::kCells; ++index)
            if (contains(cell(month, index), point))
                return {.month = month, .cell = index};
    return {};
}

} // namespace extras
