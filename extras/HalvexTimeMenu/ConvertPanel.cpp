#include "extras/HalvexTimeMenu/ConvertPanel.h"

#include "extras/HalvexTimeMenu/DaySymbols.h"
#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"
#include "platform/Clock.h"
#include "platform/Graphics.h"
#include "platform/Log.h"
#include "platform/Pasteboard.h"
#include "platform/TimeZones.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <utility>

using namespace platform;
using extras::fill;
using extras::tr;
namespace clock_format = extras::clock_format;
namespace resize = platform::Autoresizing;

namespace {

constexpr const char* kFrameKey = "ConvertFrame"; // "MenuClockConvertFrame" in the file

// Lengths in points. The panel fits on a screen of 800 x 600.
constexpr Size kContentSize{432, 338};
constexpr Point kOrigin{180, 110};
constexpr Size kSmallestSize{76, 40};
constexpr double kLargestLength = 32768;
constexpr double kMargin = 16;
constexpr double kGap = 8;
constexpr double kRowHeight = 26;
constexpr double kFieldWidth = 96;
constexpr double kButtonWidth = 76;
constexpr double kSliderHeight = 20;
constexpr double kScaleHeight = 34;
constexpr double kScaleInset = 7; // half of the slider's handle
constexpr double kInnerWidth = kContentSize.width - 2 * kMargin;
constexpr double kTop = kContentSize.height - kMargin;
constexpr double kMarkWidth = 2;
constexpr int kLabelledHours = 6; // every sixth hour has a label

/// A red line around the field, for a text that is not a time.
class ErrorMark final : public MenuExtraView {
  public:
    void drawRect(const Rect& rect) override {
        BezierPath outline;
        outline.appendRoundedRect(insetRect(rect, kMarkWidth / 2, kMarkWidth / 2), 5, 5);
        graphics().currentContext().strokePath(outline, {.width = kMarkWidth},
                                               deviceRGB(1, 0.35, 0.3),
                                               CompositingOperation::SourceOver);
    }
};

/// Returns the locale's word for the half of the day that contains @p hour.
std::string halfOfDay(int hour) {
    std::tm moment{};
    moment.tm_hour = hour;
    moment.tm_mday = 1;
    return clock_format::text("%p", moment);
}

/// Reads the left and the bottom edge, the width and the height. Returns std::nullopt if the text
/// is not of this form or no panel can have the frame.
std::optional<Rect> frameOf(const std::string& text) {
    std::istringstream stream(text);
    Rect frame;
    std::string rest;
    auto& [origin, size] = frame;
    stream >> origin.x >> origin.y >> size.width >> size.height;
    const bool isComplete = stream && !(stream >> rest);
    const double largest =
        std::max({std::abs(origin.x), std::abs(origin.y), size.width, size.height});
    const bool isPossible = size.width >= kSmallestSize.width &&
                            size.height >= kSmallestSize.height && largest < kLargestLength;
    return isComplete && isPossible ? std::optional(frame) : std::nullopt;
}

} // namespace

ConvertPanel::ConvertPanel(Preferences settings)
    : settings_(std::move(settings)), clocks_([this] {
          if (!isOpen_)
              return;
          loadPlaces();
          showTime();
      }),
      range_(timeZones().local(), systemClock().now()) {}

ConvertPanel::~ConvertPanel() {
    if (window_)
        window_->setCloseObserver(nullptr);
}

void ConvertPanel::show() {
    if (!window_ && !createWindow())
        return;
    if (!std::exchange(isOpen_, true)) {
        zoneWatch_ = timeZones().watchLocal([this] { restart(); });
        selected_ = 0;
        restart();
    }
    window_->makeKeyAndOrderFront();
}

void ConvertPanel::didClose() {
    isOpen_ = false;
    zoneWatch_.reset();
    std::ostringstream frame;
    frame << window_->frame().origin.x << ' ' << window_->frame().origin.y << ' '
          << window_->frame().size.width << ' ' << window_->frame().size.height;
    settings_.set(kFrameKey, PropertyList(frame.str()));
}

bool ConvertPanel::createWindow() {
    window_ = std::make_shared<HUDWindow>();
    if (!window_->initWithContentRect({kOrigin, kContentSize}, 0, BackingStore::Buffered, false)) {
        window_.reset();
        return false;
    }
    window_->setTitle(tr("Convert"));
    window_->setCloseObserver([this] { didClose(); });
    addTimeRow();
    addSlider();
    addList();
    addBottomRow();
    restoreFrame();
    return true;
}

void ConvertPanel::restoreFrame() {
    const std::string stored = settings_.string(kFrameKey);
    if (const auto frame = frameOf(stored))
        window_->setFrame(*frame, false, false);
    else if (!stored.empty())
        logLine("cannot use preference MenuClockConvertFrame in %@: %@ is not a frame",
                settings_.file(), stored);
}

/// Mirrors the control's place if the language is written from right to left.
template <class T>
std::shared_ptr<T> ConvertPanel::add(std::shared_ptr<T> control, std::uint32_t mask) {
    if (extras::isRightToLeft()) {
        Rect frame = control->frame();
        frame.origin.x = kContentSize.width - frame.origin.x - frame.size.width;
        control->setFrame(frame);
        constexpr std::uint32_t kMargins = resize::kMinXMargin | resize::kMaxXMargin;
        if ((mask & kMargins) != 0)
            mask ^= kMargins;
    }
    control->setAutoresizingMask(mask);
    window_->contentView().addControl(control);
    return control;
}

std::shared_ptr<Button> ConvertPanel::addButton(const Rect& frame, const std::string& title,
                                                std::uint32_t mask, std::function<void()> handler) {
    const auto button = std::make_shared<Button>(frame);
    button->setTitle(title);
    button->setHandler(std::move(handler));
    window_->makeButtonWhite(*button);
    return add(button, mask);
}

void ConvertPanel::addTimeRow() {
    const double bottom = kTop - kRowHeight;
    const Rect fieldFrame{{kMargin, bottom}, {kFieldWidth, kRowHeight}};
    const auto mark = std::make_shared<ErrorMark>();
    mark->initWithFrame(insetRect(fieldFrame, -kMarkWidth, -kMarkWidth));
    errorMark_ = std::make_shared<ViewBox>(mark);
    errorMark_->setAcceptsFocus(false);
    add(errorMark_, resize::kMinYMargin | resize::kMaxXMargin);

    field_ = std::make_shared<TextField>(fieldFrame);
    field_->setAccessibilityLabel(tr("Time"));
    field_->setToolTip(tr("Such as 14:30, 1430, 9 or 2:30 pm"));
    field_->setChangeHandler([this](const std::string&) { errorMark_->setHidden(true); });
    field_->setCommitHandler([this](const std::string& text) { commitTime(text); });
    field_->setStepHandler([this](int direction) { step(direction); });
    add(field_, resize::kMinYMargin | resize::kMaxXMargin);

    const double dayLeft = kMargin + kFieldWidth + kGap;
    const double buttonLeft = kContentSize.width - kMargin - kButtonWidth;
    day_ = std::make_shared<Label>(
        Rect{{dayLeft, bottom}, {buttonLeft - kGap - dayLeft, kRowHeight}}, "");
    if (extras::isRightToLeft())
        day_->setAlignment(TextAlignment::Right);
    add(day_, resize::kMinYMargin | resize::kWidth);
    addButton({{buttonLeft, bottom}, {kButtonWidth, kRowHeight}}, tr("Now"),
              resize::kMinYMargin | resize::kMinXMargin, [this] { setNow(); });
}

void ConvertPanel::addSlider() {
    const double bottom = kTop - kRowHeight - kGap - kSliderHeight;
    slider_ = std::make_shared<Slider>(Rect{{kMargin, bottom}, {kInnerWidth, kSliderHeight}});
    slider_->setHandler([this](double value) {
        setInstant(range_.instantAt(static_cast<int>(std::lround(value))));
    });
    add(slider_, resize::kMinYMargin | resize::kWidth);

    scale_ = std::make_shared<ConvertScale>(kScaleInset);
    scale_->initWithFrame({{kMargin, bottom - kScaleHeight}, {kInnerWidth, kScaleHeight}});
    const auto box = std::make_shared<ViewBox>(scale_);
    box->setAcceptsFocus(false);
    add(box, resize::kMinYMargin | resize::kWidth);
}

void ConvertPanel::addList() {
    images_.day = sunSymbol();
    images_.night = moonSymbol();
    images_.unknown = graphics().imageByDrawing(images_.day->size(), [](GraphicsContext&) {});
    const double bottom = kMargin + kRowHeight + kGap;
    const double top = kTop - kRowHeight - kGap - kSliderHeight - kScaleHeight - kGap;
    list_ = std::make_shared<ListBox>(Rect{{kMargin, bottom}, {kInnerWidth, top - bottom}});
    list_->setAccessibilityLabel(tr("Locations"));
    list_->setToolTip(tr("Select a location to set its time"));
    list_->setSelectionHandler([this](std::optional<std::size_t> row) { select(row); });
    add(list_, resize::kWidth | resize::kHeight);
}

void ConvertPanel::addBottomRow() {
    const double buttonLeft = kContentSize.width - kMargin - kButtonWidth;
    note_ = std::make_shared<Label>(
        Rect{{kMargin, kMargin}, {buttonLeft - kGap - kMargin, kRowHeight}}, "");
    note_->setControlSize(ControlSize::Small);
    if (extras::isRightToLeft())
        note_->setAlignment(TextAlignment::Right);
    add(note_, resize::kMaxYMargin | resize::kWidth);
    addButton({{buttonLeft, kMargin}, {kButtonWidth, kRowHeight}}, tr("Copy"),
              resize::kMaxYMargin | resize::kMinXMargin, [this] { copy(); });
}

void ConvertPanel::loadPlaces() {
    places_ = convertPlaces(clocks_.list());
    selected_ = std::min(selected_, places_.size() - 1);
    std::vector<ListRow> rows;
    for (const ConvertPlace& place : places_)
        rows.push_back({place.name});
    list_->setRows(std::move(rows));
    list_->setSelectedRow(selected_);
}

void ConvertPanel::restart() {
    loadPlaces();
    setNow();
}

void ConvertPanel::setNow() {
    const std::int64_t now = systemClock().now();
    range_ = ConvertRange(timeZones().local(), now);
    slider_->setRange(0, range_.steps());
    slider_->setNumberOfTickMarks(range_.steps() + 1);
    slider_->setAllowsTickMarkValuesOnly(true);
    showScale();
    setInstant(now - now % 60);
}

void ConvertPanel::setInstant(std::int64_t instant) {
    instant_ = instant;
    showTime();
}

void ConvertPanel::step(int direction) {
    if (field_->hasUncommittedText())
        commitTime(field_->text());
    if (!errorMark_->isHidden())
        return;
    setInstant(range_.instantAt(range_.stepBeside(instant_, direction)));
}

void ConvertPanel::commitTime(const std::string& text) {
    const auto time = readTimeOfDay(text, halfOfDay(1), halfOfDay(13));
    if (!time)
        return showError(tr("Not a time: try 14:30 or 2:30 pm"));
    const auto instant = range_.instantOf(*time, zone(), instant_);
    if (!instant)
        return showError(tr("The clocks skip this time that day"));
    setInstant(*instant);
}

void ConvertPanel::showError(const std::string& reason) {
    errorMark_->setHidden(false);
    day_->setText(reason);
}

void ConvertPanel::select(std::optional<std::size_t> row) {
    selected_ = row.value_or(0);
    if (!row)
        list_->setSelectedRow(selected_);
    showTime();
}

void ConvertPanel::copy() {
    generalPasteboard().setString(convertedText(places_, instant_));
    note_->setText(tr("Copied"));
}

/// Returns the zone of the time in the field.
ZoneRules ConvertPanel::zone() const {
    return places_.at(selected_).zone().value_or(timeZones().local());
}

void ConvertPanel::showTime() {
    const std::string time = zoneText(clock_format::time(), zone(), instant_);
    const std::string date = zoneText(clock_format::date(), zone(), instant_);
    const bool isLocal = selected_ == 0 || !places_[selected_].zone();
    field_->setText(time);
    errorMark_->setHidden(true);
    day_->setText(isLocal ? fill(tr("%1, local time"), {date})
                          : fill(tr("%1 in %2"), {date, places_[selected_].name}));
    slider_->setValue(range_.stepAt(instant_));
    slider_->setAccessibilityLabel(time + ", " + day_->text());
    note_->setText(note());
    showRows();
}

void ConvertPanel::showRows() {
    for (std::size_t i = 0; i < places_.size(); ++i) {
        const ListRow row = convertRow(places_[i], instant_, images_);
        const ListRow& shown = list_->rows()[i];
        if (row.detail != shown.detail || row.image != shown.image)
            list_->setRow(i, row);
    }
}

std::string ConvertPanel::note() {
    if (!clocks_.error().empty())
        return tr("The locations cannot be read");
    return places_.size() > 1 ? "" : tr("No locations are chosen");
}

void ConvertPanel::showScale() {
    const ZoneRules local = timeZones().local();
    const bool hasTwelveHours = clock_format::time().find("%p") != std::string::npos;
    std::vector<ConvertScale::Text> hours, dates;
    for (const auto& mark : range_.marks(kLabelledHours))
        hours.push_back({mark.place, zoneText(hasTwelveHours ? "%-I %p" : "%-H", local,
                                              range_.instantAt(mark.step))});
    for (const std::int64_t noon : range_.middles())
        dates.push_back({range_.placeOf(noon), zoneText(clock_format::date(), local, noon)});
    scale_->show(range_.marks(1), std::move(hours), std::move(dates));
}
