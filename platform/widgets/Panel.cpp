#include "platform/widgets/Panel.h"
#include "platform/PanelService.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

double titleBarHeight(std::uint32_t styleMask) {
    return (styleMask & kTitledWindowMask) != 0 ? kPanelTitleBarHeight : 0;
}

} // namespace

void ContentView::addButton(std::shared_ptr<Button> button) {
    buttons_.push_back(std::move(button));
    window_->addButton(buttons_.back());
}

void ContentView::resize(Size size) {
    const Size before = std::exchange(size_, size);
    for (const auto& button : std::vector(buttons_))
        button->setFrame(autoresized(button->frame(), button->autoresizingMask(), before, size));
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
