#include "extras/HalvexTimeMenu/WarningPanel.h"

#include "extras/HalvexTimeMenu/WarningTexts.h"
#include "extras/shared/Texts.h"
#include "platform/Clock.h"
#include "platform/TimeZones.h"
#include "platform/widgets/Button.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/TextField.h"

#include <utility>

using namespace platform;
using extras::fill;
using extras::tr;
using warnings::WarningTime;

namespace {

constexpr Point kOrigin{200, 200};
constexpr Size kSize{340, 158};
constexpr double kMargin = 16;
constexpr double kNameWidth = 72;
constexpr double kRowHeight = 22;
constexpr double kFieldLeft = kMargin + kNameWidth + 8;
constexpr double kFieldWidth = kSize.width - kMargin - kFieldLeft;
constexpr double kTitleBottom = 120;
constexpr double kTimeBottom = 90;
constexpr double kHintBottom = 52;
constexpr double kHintHeight = 32; // two lines
constexpr double kButtonBottom = 14;
constexpr double kButtonHeight = 24;
constexpr double kButtonWidth = 120;

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

} // namespace

WarningPanel::WarningPanel(Setter setter) : setter_(std::move(setter)) {}

WarningPanel::~WarningPanel() = default;

void WarningPanel::show(const std::string& time) {
    if (!window_ && !createWindow())
        return;
    title_->setText("");
    time_->setText(time);
    timeChanged();
    (time.empty() ? time_ : title_)->selectText();
    window_->makeKeyAndOrderFront();
}

bool WarningPanel::createWindow() {
    window_ = std::make_shared<HUDWindow>();
    if (!window_->initWithContentRect({kOrigin, kSize}, 0, BackingStore::Buffered, false)) {
        window_.reset();
        return false;
    }
    window_->setTitle(tr("New Warning"));
    title_ = addField(kTitleBottom, tr("Title"));
    title_->setPlaceholder(tr("Without a title"));
    time_ = addField(kTimeBottom, tr("Time"));
    time_->setPlaceholder(tr("20 or 17:30"));
    time_->setChangeHandler([this](const std::string&) { timeChanged(); });
    addHint();
    const double right = kSize.width - kMargin - kButtonWidth;
    setEveryDay_ =
        addButton(right - kButtonWidth - kMargin / 2, tr("Set Every Day"), [this] { set(true); });
    set_ = addButton(right, tr("Set"), [this] { set(false); });
    window_->contentView().setDefaultButton(set_);
    return true;
}

/// Mirrors the control's place if the language is written from right to left.
template <class T>
void WarningPanel::add(const std::shared_ptr<T>& control) {
    if (extras::isRightToLeft()) {
        Rect frame = control->frame();
        frame.origin.x = kSize.width - frame.origin.x - frame.size.width;
        control->setFrame(frame);
    }
    window_->contentView().addControl(control);
}

std::shared_ptr<TextField> WarningPanel::addField(double bottom, const std::string& name) {
    const auto label =
        std::make_shared<Label>(Rect{{kMargin, bottom}, {kNameWidth, kRowHeight}}, name);
    auto field = std::make_shared<TextField>(Rect{{kFieldLeft, bottom}, {kFieldWidth, kRowHeight}});
    label->setAlignment(extras::isRightToLeft() ? TextAlignment::Left : TextAlignment::Right);
    label->setNamedControl(field);
    add(label);
    add(field);
    return field;
}

std::shared_ptr<Button> WarningPanel::addButton(double left, const std::string& title,
                                                std::function<void()> handler) {
    auto button =
        std::make_shared<Button>(Rect{{left, kButtonBottom}, {kButtonWidth, kButtonHeight}});
    button->setTitle(title);
    button->setHandler(std::move(handler));
    window_->makeButtonWhite(*button);
    add(button);
    return button;
}

void WarningPanel::addHint() {
    hint_ =
        std::make_shared<Label>(Rect{{kFieldLeft, kHintBottom}, {kFieldWidth, kHintHeight}}, "");
    hint_->setControlSize(ControlSize::Small);
    hint_->setWraps(true);
    if (extras::isRightToLeft())
        hint_->setAlignment(TextAlignment::Right);
    add(hint_);
}

void WarningPanel::timeChanged() {
    const auto time = WarningTime::parse(time_->text());
    const std::int64_t now = systemClock().now();
    const auto next = time ? nextOccurrence(*time, now, timeZones().local()) : std::nullopt;
    hint_->setText(next ? fill(tr("Rings at %1"), {extras::shownInstant(*next, now)})
                        : tr("Type minutes, such as 20, or a time, such as 17:30"));
    set_->setEnabled(next.has_value());
    setEveryDay_->setEnabled(next && (time->kind == WarningTime::Kind::Once ||
                                      time->kind == WarningTime::Kind::EveryDay));
}

void WarningPanel::set(bool everyDay) {
    auto time = WarningTime::parse(time_->text());
    if (!time)
        return;
    if (everyDay)
        time->kind = WarningTime::Kind::EveryDay;
    if (setter_(trimmed(title_->text()), *time))
        window_->orderOut();
    else
        hint_->setText(tr("Warnings cannot be saved"));
}
