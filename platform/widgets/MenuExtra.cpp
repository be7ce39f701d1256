#include "platform/widgets/MenuExtra.h"

#include "platform/MenuExtraHost.h"
#include "platform/base/Exception.h"

#include <utility>

namespace platform {

ViewContainer::~ViewContainer() = default;
MenuExtraView::~MenuExtraView() = default;

std::shared_ptr<MenuExtraView> MenuExtraView::initWithFrame(const Rect& frame) {
    frame_ = frame;
    return shared_from_this();
}

void MenuExtraView::setFrameSize(Size size) {
    frame_.size = size;
    if (container_)
        container_->viewSizeChanged(*this);
}

void MenuExtraView::setNeedsDisplay(bool needed) {
    needsDisplay_ = needed;
    if (needed && container_)
        container_->viewNeedsDisplay(*this);
    else if (needed)
        menuExtraHost().viewNeedsDisplay(*this);
}

void MenuExtraView::drawRect(const Rect&) {}

void MenuExtraView::mouseDown(const Event&) {
    if (owner_)
        menuExtraHost().toggleMenu(*owner_);
}

bool MenuExtraView::acceptsFirstMouse(const Event&) const {
    return false;
}

void MenuExtraView::mouseMoved(const Event&) {}
void MenuExtraView::mouseDragged(const Event&) {}
void MenuExtraView::mouseUp(const Event&) {}
void MenuExtraView::mouseExited() {}

bool MenuExtraView::scrollWheel(const WheelEvent&) {
    return false;
}
bool MenuExtraView::keyDown(const KeyEvent&) {
    return false;
}
bool MenuExtraView::acceptsDrop(const DroppedData&) const {
    return false;
}
bool MenuExtraView::performDrop(const DroppedData&) {
    return false;
}

std::string MenuExtraView::toolTip() const {
    return {};
}
AccessibleDescription MenuExtraView::accessibleDescription() const {
    return {};
}

MenuExtra::~MenuExtra() {
    if (view_)
        view_->owner_ = nullptr;
}

std::shared_ptr<MenuExtra> MenuExtra::initWithBundle(std::shared_ptr<Bundle> bundle) {
    if (!bundle)
        return nullptr;
    bundle_ = std::move(bundle);
    const Rect frame{{}, {0, menuExtraHost().statusBarThickness()}};
    MenuExtra::setView(std::make_shared<MenuExtraView>()->initWithFrame(frame));
    return shared_from_this();
}

void MenuExtra::setView(std::shared_ptr<MenuExtraView> view) {
    if (!view)
        throw Exception(kInvalidArgumentException, "the view of an item must not be null");
    if (view->owner_ && view->owner_ != this)
        throw Exception(kInvalidArgumentException, "the view belongs to another item");
    if (view_)
        view_->owner_ = nullptr;
    view_ = std::move(view);
    view_->owner_ = this;
    view_->setNeedsDisplay(true);
}

void MenuExtra::setLength(float length) {
    length_ = length > 0 ? length : 0;
    menuExtraHost().lengthChanged(*this);
}

std::shared_ptr<AttributedString> MenuExtra::attributedTitle() const {
    return nullptr;
}
std::shared_ptr<Image> MenuExtra::image() const {
    return nullptr;
}
std::shared_ptr<Image> MenuExtra::alternateImage() const {
    return nullptr;
}
std::shared_ptr<Menu> MenuExtra::menu() const {
    return nullptr;
}

void MenuExtra::menuWillOpen() {}
void MenuExtra::menuDidClose() {}
void MenuExtra::willUnload() {}

} // namespace platform
