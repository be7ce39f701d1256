#include "platform/widgets/Panel.h"
#include "platform/PanelService.h"
#include "platform/base/Exception.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

double titleBarHeight(std::uint32_t styleMask) {
    return (styleMask & kTitledWindowMask) != 0 ? kPanelTitleBarHeight : 0;
}

} // namespace

ContentView::~ContentView() {
    for (const auto& control : controls_)
        control->inPanel_ = false;
}

std::vector<std::shared_ptr<Button>> ContentView::buttons() const {
    std::vector<std::shared_ptr<Button>> result;
    for (const auto& control : controls_)
        if (auto button = std::dynamic_pointer_cast<Button>(control))
            result.push_back(std::move(button));
    return result;
}

void ContentView::addControl(std::shared_ptr<Control> control) {
    if (!control || control->inPanel_)
        throw Exception(kInvalidArgumentException, "a panel needs a control that is in no panel");
    controls_.push_back(std::move(control));
    controls_.back()->inPanel_ = true;
    window_->addControl(controls_.back());
}

void ContentView::addButton(std::shared_ptr<Button> button) {
    addControl(std::move(button));
}

void ContentView::removeControl(const std::shared_ptr<Control>& control) {
    const auto found = std::ranges::find(controls_, control);
    if (found == controls_.end())
        return;
    const auto removed = *found; // @p control may refer to an element of controls_
    controls_.erase(found);
    removed->inPanel_ = false;
    if (removed == defaultButton_)
        setDefaultButton(nullptr);
    window_->removeControl(*removed);
}

void ContentView::setDefaultButton(std::shared_ptr<Button> button) {
    if (button && std::ranges::find(controls_, button) == controls_.end())
        throw Exception(kInvalidArgumentException, "the default button must be in the panel");
    defaultButton_ = std::move(button);
    window_->setDefaultButton(defaultButton_.get());
}

void ContentView::resize(Size size) {
    const Size before = std::exchange(size_, size);
    for (const auto& control : std::vector(controls_))
        control->setFrame(autoresized(control->frame(), control->autoresizingMask(), before, size));
}

Panel::Panel() = default;
Panel::~Panel() = default;

std::shared_ptr<Panel> Panel::initWithContentRect(const Rect& contentRect, std::uint32_t styleMask,
                                                  BackingStore, bool) {
    styleMask_ = styleMask;
    frame_ = contentRect;
    frame_.size.height += titleBarHeight(styleMask);
    contentView_.size_ = contentRect.size;
    window_ = panelService().makeWindow(*this);
    contentView_.window_ = window_.get();
    return window_ ? shared_from_this() : nullptr;
}

void Panel::setTitle(std::string title) {
    title_ = std::move(title);
    window_->setTitle(title_);
}

void Panel::setFrame(const Rect& frame, bool display, bool animate) {
    const auto self = shared_from_this(); // a handler may release the panel during the animation
    window_->setFrame(frame, display, animate);
}

void Panel::display() {
    window_->display();
}

void Panel::makeKeyAndOrderFront() {
    window_->makeKeyAndOrderFront();
}

void Panel::orderOut() {
    window_->orderOut();
}

bool Panel::canBecomeKeyWindow() const {
    return (styleMask_ & kTitledWindowMask) != 0 && (styleMask_ & kUtilityWindowMask) == 0;
}

void Panel::mouseUp(const Event&) {}

void Panel::frameDidChange(const Rect& frame) {
    const Size before = std::exchange(frame_, frame).size;
    if (frame.size == before)
        return;
    const double barHeight = titleBarHeight(styleMask_);
    contentView_.resize({frame.size.width, std::max(0.0, frame.size.height - barHeight)});
    sizeDidChange();
    if (const auto observer = resized_)
        observer();
}

void Panel::didClose() {
    if (const auto observer = closed_)
        observer();
}

} // namespace platform
