#include "platform/qt/PanelControl.h"

#include "platform/qt/PanelButton.h"
#include "platform/qt/PanelLabel.h"
#include "platform/qt/PanelListBox.h"
#include "platform/qt/PanelSlider.h"
#include "platform/qt/PanelTextField.h"
#include "platform/qt/PanelViewBox.h"
#include "platform/qt/Strings.h"
#include "platform/runtime/Guard.h"

namespace platform::qt {
namespace {

template <class Value, class Shown>
PanelControl* make(const std::shared_ptr<Control>& control, const std::string& owner,
                   QWidget* parent) {
    auto value = std::dynamic_pointer_cast<Value>(control);
    return value ? new Shown(std::move(value), owner, parent) : nullptr;
}

} // namespace

PanelControl::PanelControl(QWidget& widget, std::shared_ptr<Control> control, std::string owner)
    : widget_(widget), control_(std::move(control)), owner_(std::move(owner)) {
    control_->setDisplay(this);
}

PanelControl::~PanelControl() {
    if (control_)
        control_->setDisplay(nullptr);
}

void PanelControl::detach() {
    if (!control_)
        return;
    willDetach();
    control_->setDisplay(nullptr);
    control_.reset();
}

void PanelControl::place() {
    if (!control_)
        return;
    const Rect frame = control_->frame();
    const double top = widget_.parentWidget()->height() - frame.origin.y - frame.size.height;
    widget_.setGeometry(
        QRectF(frame.origin.x, top, frame.size.width, frame.size.height).toAlignedRect());
}

void PanelControl::controlDidChange() {
    place();
    widget_.setEnabled(control_->isEnabled());
    widget_.setToolTip(qString(control_->toolTip()));
    updateAccessibleName();
    applySettings();
    widget_.setVisible(!control_->isHidden());
}

void PanelControl::updateAccessibleName() {
    if (control_)
        widget_.setAccessibleName(nameForScreenReaders());
}

QString PanelControl::nameForScreenReaders() const {
    if (!control_->accessibilityLabel().empty())
        return qString(control_->accessibilityLabel());
    for (const auto* label : widget_.parentWidget()->findChildren<PanelLabel*>())
        if (label->buddy() == &widget_)
            return label->plainText();
    return {};
}

void PanelControl::takeFocus() {
    widget_.setFocus(Qt::OtherFocusReason);
}

void PanelControl::run(const std::function<void()>& code) const {
    runGuarded(owner_, code);
}

PanelControl* makePanelControl(const std::shared_ptr<Control>& control, const std::string& owner,
                               QWidget* parent) {
    for (const auto maker : {make<Button, PanelButton>, make<Label, PanelLabel>,
                             make<Slider, PanelSlider>, make<TextField, PanelTextField>,
                             make<ListBox, PanelListBox>, make<ViewBox, PanelViewBox>})
        if (PanelControl* const made = maker(control, owner, parent))
            return made;
    return nullptr;
}

} // namespace platform::qt
