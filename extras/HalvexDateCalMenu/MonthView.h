#pragma once

#include "extras/HalvexDateCalMenu/CalendarEvents.h"
#include "extras/HalvexDateCalMenu/CalendarStyle.h"
#include "extras/HalvexDateCalMenu/MonthPainter.h"
#include "platform/widgets/MenuExtra.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace extras {

/// A calendar in a menu: one or two months, and below them the selected days in words.
///
/// A click selects a day; dragging, a Shift-click or arrow keys with Shift select a range. The
/// wheel and the buttons change the month. Arrow keys, Page Up, Page Down and Home move the
/// selected day, Return and Control-C copy it, and a double click opens it. Main thread only.
class MonthView final : public platform::MenuExtraView {
  public:
    struct Settings {
        WeekRules rules{};
        std::optional<WeekNumbering> weekNumbers{}; ///< std::nullopt hides them
        int months = 1;                             ///< side by side
        bool rightToLeft = false;
    };
    struct Actions {
        EventsBetween events;
        std::function<void()> selectionChanged;
        std::function<void()> copy;
        /// Opens a day. Returns why it cannot be opened, or an empty text.
        std::function<std::string(std::chrono::sys_days day)> open;
    };

    explicit MonthView(Actions actions);

    /// Changes the settings. Selects today.
    void configure(const Settings& settings);
    /// Selects @p today, shows its month and reads the events again.
    void reset(std::chrono::sys_days today);
    /// Marks another day as today.
    void setToday(std::chrono::sys_days today);
    void reloadEvents();
    /// Reads colours and fonts again.
    void updateStyle();

    const CalendarSelection& selection() const { return picture_.selection; }
    const SelectionDetails& details() const { return picture_.details; }

    void drawRect(const platform::Rect& rect) override;
    void mouseDown(const platform::Event& event) override;
    void mouseDragged(const platform::Event& event) override;
    void mouseUp(const platform::Event& event) override;
    void mouseMoved(const platform::Event& event) override;
    void mouseExited() override;
    bool scrollWheel(const platform::WheelEvent& event) override;
    bool keyDown(const platform::KeyEvent& event) override;
    std::string toolTip() const override;
    platform::AccessibleDescription accessibleDescription() const override;

  private:
    using Mode = CalendarSelection::Mode;

    MonthGeometry::Target targetAt(platform::Point point) const;
    std::optional<std::chrono::sys_days> dayOf(const MonthGeometry::Target& target) const;
    void press(MonthButton button);
    void select(std::chrono::sys_days day, Mode mode);
    void open(std::chrono::sys_days day);
    bool moveDay(platform::Key key, Mode mode);
    bool copies(const platform::KeyEvent& event);
    void hover(const MonthGeometry::Target& target);
    /// Changes the selection and updates what depends on it.
    void change(const std::function<void(CalendarSelection& selection)>& code);
    void showMonths();
    void updateDetails();
    /// Sets the geometry, and makes room for @p moreLines.
    void resize(int moreLines);

    Actions actions_;
    Settings settings_;
    CalendarStyle style_;
    MonthPicture picture_;
    double wheel_ = 0;     ///< notches that have not changed the month yet
    bool pressed_ = false; ///< a button of the mouse, over this view
    bool selects_ = false; ///< the pointer was over a day then
};

} // namespace extras
