#include "extras/HalvexDateCalMenu/MonthPainter.h"

#include "extras/calendar/CalendarTexts.h"
#include "extras/shared/Texts.h"
#include "platform/Graphics.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace platform;
using std::chrono::sys_days;

namespace extras {
namespace {

// All in points.
constexpr double kDisc = 28;   // behind a selected day
constexpr double kRing = 1.5;  // around the selected day
constexpr double kRingGap = 2; // from today's disc to the middle of the ring
constexpr double kDot = 4;
constexpr double kDotGap = 2;
constexpr double kDotBottom = 4; // from the bottom of a cell
constexpr int kMaximumDots = 3;
constexpr double kEventDot = 6;
constexpr double kEventIndent = 14;
constexpr double kTimeGap = 10;   // beside the time of an event
constexpr double kNameMargin = 2; // beside the name of a weekday

Rect centeredSquare(const Rect& rect, double side) {
    return {{rect.origin.x + (rect.size.width - side) / 2,
             rect.origin.y + (rect.size.height - side) / 2},
            {side, side}};
}

Rect inset(const Rect& rect, double distance) {
    return {{rect.origin.x + distance, rect.origin.y + distance},
            {rect.size.width - 2 * distance, rect.size.height - 2 * distance}};
}

BezierPath rounded(const Rect& rect) {
    BezierPath path;
    path.appendRoundedRect(rect, rect.size.height / 2, rect.size.height / 2);
    return path;
}

AttributedString labelled(const std::string& text, const Font& font, const Color& color) {
    return AttributedString(text, {.font = font, .foregroundColor = color});
}

std::string firstCharacter(const std::string& text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        ++length;
    return text.substr(0, length);
}

/// Returns the names of the weekdays, or their first characters if a name does not fit.
std::array<std::string, 7> weekdayNames(double width, const Font& font) {
    auto names = calendar_texts::weekdayNames();
    const auto fits = [&](const std::string& name) {
        return graphics().sizeOfText(labelled(name, font, {})).width <= width - 2 * kNameMargin;
    };
    if (!std::ranges::all_of(names, fits))
        std::ranges::transform(names, names.begin(), firstCharacter);
    return names;
}

} // namespace

MonthPainter::MonthPainter(GraphicsContext& context, const MonthPicture& picture,
                           const CalendarStyle& style)
    : context_(context), picture_(picture), style_(style) {}

void MonthPainter::draw() const {
    for (int month = 0; month < picture_.geometry.options().months; ++month)
        drawMonth(month);
    drawButtons();
    drawDetails();
    drawEvents();
}

void MonthPainter::drawMonth(int month) const {
    drawHeading(month);
    drawWeekdays(month);
    if (picture_.weekNumbers)
        drawWeekNumbers(month);
    drawRange(month);
    for (int cell = 0; cell < MonthLayout::kCells; ++cell)
        drawDay(month, cell);
}

void MonthPainter::drawHeading(int month) const {
    const auto& layout = picture_.layouts[static_cast<std::size_t>(month)];
    drawText(calendar_texts::heading(layout.month()), picture_.geometry.heading(month),
             style_.heading, style_.text, Align::Start);
}

void MonthPainter::drawWeekdays(int month) const {
    const auto& layout = picture_.layouts[static_cast<std::size_t>(month)];
    const auto names = weekdayNames(picture_.geometry.weekday(month, 0).size.width, style_.weekday);
    for (int column = 0; column < MonthLayout::kColumns; ++column) {
        const sys_days day = layout.day(column);
        drawText(names[std::chrono::weekday(day).c_encoding()],
                 picture_.geometry.weekday(month, column), style_.weekday,
                 picture_.rules.isWeekend(day) ? style_.dimmedText : style_.secondaryText,
                 Align::Center);
    }
}

void MonthPainter::drawWeekNumbers(int month) const {
    const auto& layout = picture_.layouts[static_cast<std::size_t>(month)];
    for (int row = 0; row < MonthLayout::kRows; ++row) {
        const sys_days first = layout.day(row * MonthLayout::kColumns);
        drawText(calendar_texts::number(weekNumberOfRow(first, *picture_.weekNumbers)),
                 picture_.geometry.weekNumber(month, row), style_.weekNumber, style_.dimmedText,
                 Align::Center);
    }
}

void MonthPainter::drawButtons() const {
    const bool mirrored = picture_.geometry.options().rightToLeft;
    for (const MonthButton button :
         {MonthButton::Previous, MonthButton::Today, MonthButton::Next}) {
        const Rect rect = picture_.geometry.button(button);
        if (picture_.hovered.button == button)
            fill(rounded(rect), style_.hover);
        if (button == MonthButton::Today)
            fill(rounded(centeredSquare(rect, 6)), style_.secondaryText);
        else
            drawChevron(rect, (button == MonthButton::Previous) != mirrored);
    }
}

void MonthPainter::drawChevron(const Rect& rect, bool pointsLeft) const {
    const Point center{rect.origin.x + rect.size.width / 2, rect.origin.y + rect.size.height / 2};
    const double tip = pointsLeft ? -2 : 2;
    BezierPath path;
    path.moveToPoint({center.x - tip, center.y + 4});
    path.lineToPoint({center.x + tip, center.y});
    path.lineToPoint({center.x - tip, center.y - 4});
    context_.strokePath(path, {.width = 2, .cap = LineCap::Round, .join = LineJoin::Round},
                        style_.secondaryText, CompositingOperation::SourceOver);
}

/// Whether marks of @p day belong into this month: two months side by side share some days.
bool MonthPainter::isShownHere(int month, sys_days day) const {
    const auto isIn = [day](const MonthLayout& layout) { return layout.isInMonth(day); };
    return isIn(picture_.layouts[static_cast<std::size_t>(month)]) ||
           std::ranges::none_of(picture_.layouts, isIn);
}

/// Draws one band per week behind the selected days.
void MonthPainter::drawRange(int month) const {
    if (!picture_.selection.isRange())
        return;
    const auto& layout = picture_.layouts[static_cast<std::size_t>(month)];
    const DayRange range = picture_.selection.range();
    for (int row = 0; row < MonthLayout::kRows; ++row) {
        std::optional<Rect> band;
        for (int cell = row * MonthLayout::kColumns; cell < (row + 1) * MonthLayout::kColumns;
             ++cell) {
            if (!range.contains(layout.day(cell)) || !isShownHere(month, layout.day(cell)))
                continue;
            const Rect disc = centeredSquare(picture_.geometry.cell(month, cell), kDisc);
            const double left = std::min(band.value_or(disc).origin.x, disc.origin.x);
            const double right = std::max(band ? band->origin.x + band->size.width : 0,
                                          disc.origin.x + disc.size.width);
            band = Rect{{left, disc.origin.y}, {right - left, kDisc}};
        }
        if (band)
            fill(rounded(*band), style_.selection);
    }
}

Color MonthPainter::colorOf(int month, sys_days day) const {
    if (!picture_.layouts[static_cast<std::size_t>(month)].isInMonth(day))
        return style_.dimmedText;
    if (day == picture_.today)
        return style_.todayText;
    const auto isHoliday = [day](const CalendarEvent& event) {
        return event.isHoliday && event.day == day;
    };
    if (std::ranges::any_of(picture_.events, isHoliday))
        return style_.holiday;
    return picture_.rules.isWeekend(day) ? style_.weekendText : style_.text;
}

void MonthPainter::drawDay(int month, int cell) const {
    const auto& layout = picture_.layouts[static_cast<std::size_t>(month)];
    const sys_days day = layout.day(cell);
    const Rect rect = picture_.geometry.cell(month, cell);
    const Rect disc = centeredSquare(rect, kDisc);
    const MonthGeometry::Target target{.month = month, .cell = cell};
    if (picture_.hovered == target)
        fill(rounded(disc), style_.hover);
    if (isShownHere(month, day))
        drawDayMarks(day, disc);
    const bool isToday = day == picture_.today && layout.isInMonth(day);
    const std::chrono::year_month_day date(day);
    drawText(calendar_texts::number(static_cast<int>(static_cast<unsigned>(date.day()))), rect,
             isToday ? style_.todayDay : style_.day, colorOf(month, day), Align::Center);
    if (layout.isInMonth(day))
        drawDots(day, rect);
}

void MonthPainter::drawDayMarks(sys_days day, const Rect& disc) const {
    const bool isSelected = day == picture_.selection.day();
    const bool isToday = day == picture_.today;
    if (isToday)
        fill(rounded(disc), style_.today);
    else if (isSelected && !picture_.selection.isRange())
        fill(rounded(disc), style_.selection);
    if (isSelected)
        context_.strokePath(rounded(inset(disc, isToday ? -kRingGap : kRing / 2)), {.width = kRing},
                            style_.selectionEdge, CompositingOperation::SourceOver);
}

void MonthPainter::drawDots(sys_days day, const Rect& cell) const {
    const auto first = std::ranges::lower_bound(picture_.events, day, {}, &CalendarEvent::day);
    const auto last = std::ranges::upper_bound(picture_.events, day, {}, &CalendarEvent::day);
    const auto count = std::min<std::ptrdiff_t>(last - first, kMaximumDots);
    const double width = static_cast<double>(count) * (kDot + kDotGap) - kDotGap;
    double x = cell.origin.x + (cell.size.width - width) / 2;
    for (auto event = first; event < first + count; ++event, x += kDot + kDotGap) {
        const Color color = event->isHoliday ? style_.holiday : style_.event;
        fill(rounded({{x, cell.origin.y + kDotBottom}, {kDot, kDot}}),
             day == picture_.today ? style_.todayText : color);
    }
}

void MonthPainter::drawDetails() const {
    const MonthGeometry& geometry = picture_.geometry;
    context_.fillRect(geometry.separator(), style_.separator, CompositingOperation::SourceOver);
    drawText(picture_.details.title, geometry.title(), style_.title, style_.text, Align::Start);
    drawText(picture_.details.subtitle, geometry.subtitle(), style_.details, style_.secondaryText,
             Align::Start);
    drawText(picture_.details.weeks, geometry.more(0), style_.details, style_.secondaryText,
             Align::Start);
}

void MonthPainter::drawEvents() const {
    const auto& events = picture_.details.events;
    const int offset = picture_.details.weeks.empty() ? 0 : 1;
    const auto lines =
        static_cast<std::size_t>(std::max(picture_.geometry.options().moreLines - offset, 0));
    const auto lineOf = [&](std::size_t i) {
        return picture_.geometry.more(static_cast<int>(i) + offset);
    };
    const std::size_t shown = events.size() <= lines ? events.size() : std::max(lines, 1UL) - 1;
    for (std::size_t i = 0; i < shown; ++i)
        drawEvent(events[i], lineOf(i));
    if (shown < std::min(lines, events.size())) {
        const auto rest = static_cast<long>(events.size() - shown);
        drawText(tr("%1 more event", "%1 more events", rest), lineOf(shown), style_.details,
                 style_.secondaryText, Align::Start);
    }
}

void MonthPainter::drawEvent(const CalendarEvent& event, const Rect& line) const {
    const bool mirrored = picture_.geometry.options().rightToLeft;
    const double dotX = mirrored ? line.origin.x + line.size.width - kEventDot : line.origin.x;
    const double dotY = line.origin.y + (line.size.height - kEventDot) / 2;
    fill(rounded({{dotX, dotY}, {kEventDot, kEventDot}}),
         event.isHoliday ? style_.holiday : style_.event);
    const std::string time =
        event.minuteOfDay ? calendar_texts::timeOfDay(*event.minuteOfDay) : std::string();
    const double timeWidth =
        graphics().sizeOfText(labelled(time, style_.details, style_.secondaryText)).width;
    Rect title = line;
    title.origin.x += mirrored ? timeWidth + kTimeGap : kEventIndent;
    title.size.width -= kEventIndent + timeWidth + kTimeGap;
    drawText(event.title, title, style_.details, style_.text, Align::Start);
    drawText(time, line, style_.details, style_.secondaryText, Align::End);
}

void MonthPainter::fill(const BezierPath& path, const Color& color) const {
    context_.fillPath(path, color, CompositingOperation::SourceOver);
}

/// Draws text in the vertical centre of @p rect, truncated to its width.
void MonthPainter::drawText(const std::string& text, const Rect& rect, const Font& font,
                            const Color& color, Align align) const {
    const bool mirrored = picture_.geometry.options().rightToLeft;
    const TextAlignment alignment = align == Align::Center                ? TextAlignment::Center
                                    : (align == Align::Start) != mirrored ? TextAlignment::Left
                                                                          : TextAlignment::Right;
    const AttributedString label(
        text, {.font = font,
               .foregroundColor = color,
               .paragraphStyle = ParagraphStyle{alignment, LineBreakMode::TruncatingTail}});
    const double height = std::ceil(graphics().sizeOfText(label).height);
    const double y = rect.origin.y + std::floor((rect.size.height - height) / 2);
    context_.drawTextInRect(label, {{rect.origin.x, y}, {rect.size.width, height}});
}

} // namespace extras
