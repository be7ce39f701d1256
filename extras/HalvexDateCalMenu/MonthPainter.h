#pragma once

#include "extras/HalvexDateCalMenu/CalendarEvents.h"
#include "extras/HalvexDateCalMenu/CalendarStyle.h"
#include "extras/HalvexDateCalMenu/MonthGeometry.h"
#include "extras/HalvexDateCalMenu/SelectionDetails.h"
#include "extras/calendar/CalendarSelection.h"
#include "extras/calendar/MonthLayout.h"
#include "extras/calendar/WeekRules.h"
#include "platform/GraphicsContext.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace extras {

/// What a month view shows.
struct MonthPicture {
    MonthGeometry geometry{};
    std::vector<MonthLayout> layouts{}; ///< the visible months
    WeekRules rules{};
    std::optional<WeekNumbering> weekNumbers{}; ///< std::nullopt hides them
    std::chrono::sys_days today{};
    CalendarSelection selection;
    MonthGeometry::Target hovered{};
    std::vector<CalendarEvent> events{}; ///< of the visible days
    SelectionDetails details{};
};

/// Draws a month view.
class MonthPainter {
  public:
    /// All arguments must outlive the painter.
    MonthPainter(platform::GraphicsContext& context, const MonthPicture& picture,
                 const CalendarStyle& style);

    void draw() const;

  private:
    enum class Align { Start, Center, End };

    void drawMonth(int month) const;
    void drawHeading(int month) const;
    void drawWeekdays(int month) const;
    void drawWeekNumbers(int month) const;
    void drawButtons() const;
    void drawChevron(const platform::Rect& rect, bool pointsLeft) const;
    void drawRange(int month) const;
    void drawDay(int month, int cell) const;
    void drawDayMarks(std::chrono::sys_days day, const platform::Rect& disc) const;
    void drawDots(std::chrono::sys_days day, const platform::Rect& cell) const;
    void drawDetails() const;
    void drawEvents() const;
    void drawEvent(const CalendarEvent& event, const platform::Rect& line) const;

    bool isShownHere(int month, std::chrono::sys_days day) const;
    platform::Color colorOf(int month, std::chrono::sys_days day) const;
    void fill(const platform::BezierPath& path, const platform::Color& color) const;
    void drawText(const std::string& text, const platform::Rect& rect, const platform::Font& font,
                  const platform::Color& color, Align align) const;

    platform::GraphicsContext& context_;
    const MonthPicture& picture_;
    const CalendarStyle& style_;
};

} // namespace extras
