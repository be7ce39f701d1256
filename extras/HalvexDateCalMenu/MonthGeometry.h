#pragma once

#include "extras/calendar/MonthLayout.h"
#include "platform/values/Geometry.h"

#include <optional>

namespace extras {

/// The buttons beside the heading, in reading order.
enum class MonthButton { Previous, Today, Next };
inline constexpr int kMonthButtons = 3;

/// Where the parts of a month view are, in points from the bottom left corner. Months are side by
/// side; below them are the lines that describe the selection. Everything is mirrored for languages
/// that are written from right to left. A regular value.
class MonthGeometry {
  public:
    struct Options {
        int months = 1;
        bool weekNumbers = false;
        bool rightToLeft = false;
        int moreLines = 0; ///< below the two lines about the selected days

        friend bool operator==(const Options&, const Options&) = default;
    };

    /// What is at a position. At most one of the two has a value.
    struct Target {
        std::optional<MonthButton> button{};
        int month = 0; ///< of the cell, from 0
        std::optional<int> cell{};

        friend bool operator==(const Target&, const Target&) = default;
    };

    MonthGeometry() : MonthGeometry(Options()) {}
    /// The columns grow with @p width if it exceeds that of minimumSize.
    explicit MonthGeometry(const Options& options, double width = 0);

    static platform::Size minimumSize(const Options& options);
    const Options& options() const { return options_; }

    platform::Rect heading(int month) const;
    platform::Rect button(MonthButton button) const;
    platform::Rect weekday(int month, int column) const;
    platform::Rect weekNumber(int month, int row) const;
    platform::Rect cell(int month, int cell) const;
    /// Returns the line between the months and the text below.
    platform::Rect separator() const;
    /// Returns the rectangle of the title of the selection, of the text below it, or of one of the
    /// other lines.
    platform::Rect title() const;
    platform::Rect subtitle() const;
    platform::Rect more(int line) const;

    Target targetAt(platform::Point point) const;

  private:
    double top() const { return size_.height; }
    double monthLeft(int month) const;
    double cellWidth() const;
    /// Returns a rectangle whose x coordinate is counted from where a line of text starts.
    platform::Rect placed(double x, double y, double width, double height) const;
    platform::Rect textLine(double belowGrid, double height) const;

    Options options_;
    platform::Size size_;
};

} // namespace extras
