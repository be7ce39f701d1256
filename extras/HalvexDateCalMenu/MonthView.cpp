#include "extras/HalvexDateCalMenu/MonthView.h"

#include "extras/calendar/CalendarTexts.h"
#include "platform/Graphics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace platform;
using std::chrono::days;
using std::chrono::sys_days;

namespace extras {
namespace {

constexpr int kMaximumEventLines = 4;

bool hasModifier(std::uint32_t flags, std::uint32_t mask) {
    return (flags & mask) != 0;
}

} // namespace

MonthView::MonthView(Actions actions)
    : actions_(std::move(actions)),
      style_(currentCalendarStyle()), picture_{.selection = CalendarSelection({})} {}

void MonthView::configure(const Settings& settings) {
    settings_ = settings;
    picture_.rules = settings.rules;
    picture_.weekNumbers = settings.weekNumbers;
    reset(picture_.today);
}

void MonthView::reset(sys_days today) {
    picture_.today = today;
    picture_.selection = CalendarSelection(today, settings_.months);
    picture_.hovered = {};
    pressed_ = selects_ = false;
    wheel_ = 0;
    resize(0);
    showMonths();
    updateDetails();
}

void MonthView::setToday(sys_days today) {
    picture_.today = today;
    updateDetails();
}

void MonthView::reloadEvents() {
    showMonths();
    updateDetails();
}

void MonthView::updateStyle() {
    style_ = currentCalendarStyle();
    setNeedsDisplay(true);
}

void MonthView::resize(int moreLines) {
    const MonthGeometry::Options options{.months = settings_.months,
                                         .weekNumbers = settings_.weekNumbers.has_value(),
                                         .rightToLeft = settings_.rightToLeft,
                                         .moreLines = moreLines};
    if (options == picture_.geometry.options() && frame().size.width > 0)
        return;
    picture_.geometry = MonthGeometry(options);
    setFrameSize(MonthGeometry::minimumSize(options));
}

void MonthView::showMonths() {
    picture_.layouts.clear();
    for (int i = 0; i < settings_.months; ++i)
        picture_.layouts.emplace_back(picture_.selection.month() + std::chrono::months(i),
                                      settings_.rules.numbering.firstWeekday);
    picture_.events =
        actions_.events(picture_.layouts.front().first(), picture_.layouts.back().last());
    setNeedsDisplay(true);
}

void MonthView::updateDetails() {
    const DayRange range = picture_.selection.range();
    picture_.details = describe(picture_.selection, picture_.today, picture_.rules,
                                picture_.weekNumbers, actions_.events(range.first, range.last));
    const auto events = static_cast<int>(picture_.details.events.size());
    const int lines =
        std::min(events, kMaximumEventLines) + (picture_.details.weeks.empty() ? 0 : 1);
    // The view never shrinks under the pointer.
    resize(std::max(picture_.geometry.options().moreLines, lines));
    setNeedsDisplay(true);
}

void MonthView::change(const std::function<void(CalendarSelection& selection)>& code) {
    const CalendarSelection before = picture_.selection;
    code(picture_.selection);
    if (picture_.selection == before)
        return;
    if (picture_.selection.month() != before.month())
        showMonths();
    if (picture_.selection.range() == before.range())
        return;
    updateDetails();
    actions_.selectionChanged();
}

void MonthView::drawRect(const Rect& rect) {
    picture_.geometry = MonthGeometry(picture_.geometry.options(), rect.size.width);
    MonthPainter(graphics().currentContext(), picture_, style_).draw();
}

MonthGeometry::Target MonthView::targetAt(Point point) const {
    return MonthGeometry(picture_.geometry.options(), frame().size.width).targetAt(point);
}

std::optional<sys_days> MonthView::dayOf(const MonthGeometry::Target& target) const {
    if (!target.cell)
        return std::nullopt;
    return picture_.layouts[static_cast<std::size_t>(target.month)].day(*target.cell);
}

void MonthView::mouseDown(const Event& event) {
    if (event.buttonNumber != 0)
        return;
    const auto target = targetAt(event.location);
    const auto day = dayOf(target);
    const bool extends = hasModifier(event.modifierFlags, kShiftKeyMask);
    pressed_ = true;
    selects_ = day.has_value();
    if (target.button)
        press(*target.button);
    else if (day && event.clickCount == 2 && !extends)
        open(*day);
    else if (day)
        select(*day, extends ? Mode::Extend : Mode::Move);
}

void MonthView::mouseDragged(const Event& event) {
    const auto target = targetAt(event.location);
    hover(target);
    if (const auto day = dayOf(target); day && selects_)
        select(*day, Mode::Extend);
}

/// A release without a press ends a drag from the bar.
void MonthView::mouseUp(const Event& event) {
    const auto day = dayOf(targetAt(event.location));
    if (day && !pressed_ && event.buttonNumber == 0)
        select(*day, Mode::Move);
    pressed_ = selects_ = false;
}

void MonthView::select(sys_days day, Mode mode) {
    change([&](CalendarSelection& selection) { selection.select(day, mode); });
}

void MonthView::mouseMoved(const Event& event) {
    hover(targetAt(event.location));
}

void MonthView::mouseExited() {
    hover({});
}

void MonthView::hover(const MonthGeometry::Target& target) {
    if (picture_.hovered == target)
        return;
    picture_.hovered = target;
    setNeedsDisplay(true);
}

void MonthView::press(MonthButton button) {
    change([&](CalendarSelection& selection) {
        if (button == MonthButton::Today)
            selection = CalendarSelection(picture_.today, settings_.months);
        else
            selection.scrollByMonths(button == MonthButton::Next ? 1 : -1);
    });
}

void MonthView::open(sys_days day) {
    std::string reason = actions_.open(day);
    if (reason.empty() && container())
        return container()->dismiss();
    picture_.details.subtitle = std::move(reason);
    setNeedsDisplay(true);
}

bool MonthView::scrollWheel(const WheelEvent& event) {
    wheel_ += event.deltaY;
    const double notches = std::trunc(wheel_);
    wheel_ -= notches;
    if (notches != 0)
        change([&](CalendarSelection& selection) {
            selection.scrollByMonths(-static_cast<int>(notches));
        });
    return true;
}

bool MonthView::keyDown(const KeyEvent& event) {
    const bool extends = hasModifier(event.modifierFlags, kShiftKeyMask);
    return copies(event) || moveDay(event.key, extends ? Mode::Extend : Mode::Move);
}

bool MonthView::copies(const KeyEvent& event) {
    const bool isControlC = event.text == "c" && hasModifier(event.modifierFlags, kControlKeyMask);
    if (event.key != Key::Return && !isControlC)
        return false;
    actions_.copy();
    if (event.key == Key::Return && container())
        container()->dismiss();
    return true;
}

bool MonthView::moveDay(Key key, Mode mode) {
    const int forward = settings_.rightToLeft ? -1 : 1;
    const std::array<std::pair<Key, int>, 4> steps{
        {{Key::Left, -forward}, {Key::Right, forward}, {Key::Up, -7}, {Key::Down, 7}}};
    const auto* const step = std::ranges::find(steps, key, &decltype(steps)::value_type::first);
    if (step != steps.end()) {
        change([&](CalendarSelection& selection) {
            selection.goTo(selection.day() + days(step->second), mode);
        });
        return true;
    }
    if (key == Key::PageUp || key == Key::PageDown)
        change([&](CalendarSelection& selection) {
            selection.moveByMonths(key == Key::PageDown ? 1 : -1);
        });
    else if (key == Key::Home)
        change([&](CalendarSelection& selection) { selection.goTo(picture_.today, mode); });
    else
        return false;
    return true;
}

std::string MonthView::toolTip() const {
    const auto day = dayOf(picture_.hovered);
    std::string text;
    for (const CalendarEvent& event : picture_.events)
        if (event.day == day)
            text += (text.empty() ? "" : "\n") + eventText(event);
    return text;
}

AccessibleDescription MonthView::accessibleDescription() const {
    std::string description = picture_.details.subtitle;
    if (!picture_.details.weeks.empty())
        description += "\n" + picture_.details.weeks;
    for (const CalendarEvent& event : picture_.details.events)
        description += "\n" + eventText(event);
    return {.name = calendar_texts::heading(picture_.selection.month()),
            .value = picture_.details.title,
            .description = description};
}

} // namespace extras
