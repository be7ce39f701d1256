// Shows the day of the month. Its menu contains a calendar that follows the mouse wheel, Page Up
// and Page Down. A click on a day copies its date.
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"
#include "platform/Graphics.h"
#include "platform/Pasteboard.h"
#include "platform/widgets/Menu.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <chrono>
#include <cstdio>

using namespace platform;
using namespace std::chrono;

constexpr double kCell = 26;                // points, in both directions
constexpr Size kSize{7 * kCell, 8 * kCell}; // the date, the weekdays and six weeks

static year_month_day today() {
    const std::tm time = systemClock().localTime(systemClock().now());
    return year(time.tm_year + 1900) / (time.tm_mon + 1) / time.tm_mday;
}

class MonthView final : public MenuExtraView {
  public:
    void show(year_month month) {
        month_ = month;
        setNeedsDisplay(true);
    }
    void drawRect(const Rect&) override {
        drawCell(text(month_ / 1).substr(0, 7), 3);
        for (int i = 0; i < 7; ++i)
            drawCell(std::string(1, "MTWTFSS"[i]), 7 + i);
        for (int day = 1; (month_ / day).ok(); ++day)
            drawCell(std::to_string(day), cellOf(day), month_ / day == today());
    }
    void mouseDown(const Event& event) override {
        const int row = int((kSize.height - event.location.y) / kCell);
        const int cell = row * 7 + int(event.location.x / kCell);
        const year_month_day day(sys_days(month_ / 1) + days(cell - cellOf(1)));
        if (day.year() / day.month() == month_)
            generalPasteboard().setString(text(day));
    }
    bool scrollWheel(const WheelEvent& event) override {
        show(month_ + months(event.deltaY > 0 ? -1 : 1));
        return true;
    }
    bool keyDown(const KeyEvent& event) override {
        const bool isUp = event.key == Key::PageUp;
        return (isUp || event.key == Key::PageDown) && scrollWheel({.deltaY = isUp ? 1.0 : -1.0});
    }
    AccessibleDescription accessibleDescription() const override {
        return {.name = "Calendar", .value = text(month_ / 1).substr(0, 7)};
    }

  private:
    static std::string text(year_month_day day) {
        char date[32];
        std::snprintf(date, sizeof date, "%04d-%02u-%02u", int(day.year()), unsigned(day.month()),
                      unsigned(day.day()));
        return date;
    }
    int cellOf(int day) const { return 12 + day + int(weekday(month_ / 1).iso_encoding()); }
    static void drawCell(const std::string& string, int cell, bool bold = false) {
        const AttributedString label(string, {.font = Font{.bold = bold}});
        const Size size = graphics().sizeOfText(label);
        graphics().currentContext().drawText(
            label, {(cell % 7 + 0.5) * kCell - size.width / 2,
                    kSize.height - (cell - cell % 7 + 3.5) / 7 * kCell - size.height / 2});
    }

    year_month month_{};
};

class Month final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        menu_ = std::make_shared<Menu>();
        month_->initWithFrame({{}, kSize});
        menu_->addItem(std::make_shared<MenuItem>("Calendar")).setView(month_);
        ticks_ = systemClock().tick(TickInterval::Minute, [this] { update(); });
        update();
        return shared_from_this();
    }
    void menuWillOpen() override { month_->show(today().year() / today().month()); }
    void willUnload() override {
        ticks_.reset();
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void update() { setTitle(std::to_string(unsigned(today().day()))); }
    std::shared_ptr<MonthView> month_ = std::make_shared<MonthView>();
    std::unique_ptr<Watch> ticks_;
};

HALVEX_MENU_EXTRA(Month)
