#include "platform/qt/PanelSlider.h"

#include "platform/qt/PanelStyle.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace platform::qt {
namespace {

constexpr double kSmallestTickDistance = 3;

/// Tells screen readers the value rather than the position of the slider.
class SliderAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit SliderAccessible(PanelSlider& widget)
        : QAccessibleWidget(&widget, QAccessible::Slider), widget_(widget) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? currentValue().toString()
                                          : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override {
        return read([this](const Slider& slider) { return slider.valueAt(widget_.value()); });
    }
    void setCurrentValue(const QVariant& value) override {
        if (const auto slider = widget_.slider())
            widget_.setValue(slider->positionOf(value.toDouble()));
    }
    QVariant minimumValue() const override {
        return read([](const Slider& slider) { return slider.minValue(); });
    }
    QVariant maximumValue() const override {
        return read([](const Slider& slider) { return slider.maxValue(); });
    }
    QVariant minimumStepSize() const override {
        return read([this](const Slider& slider) {
            return slider.valueAt(widget_.singleStep()) - slider.minValue();
        });
    }

  private:
    template <class Function>
    QVariant read(const Function& function) const {
        const auto slider = widget_.slider();
        return slider ? QVariant(function(*slider)) : QVariant();
    }

    PanelSlider& widget_;
};

QAccessibleInterface* createAccessible(const QString&, QObject* object) {
    auto* const widget = qobject_cast<PanelSlider*>(object);
    return widget ? new SliderAccessible(*widget) : nullptr;
}

} // namespace

PanelSlider::PanelSlider(std::shared_ptr<Slider> slider, std::string owner, QWidget* parent)
    : QSlider(parent), PanelControl(*this, std::move(slider), std::move(owner)) {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(createAccessible);
        return true;
    }();
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QSlider::valueChanged, this, &PanelSlider::report);
    controlDidChange();
}

void PanelSlider::report(int position) {
    const auto moved = slider();
    // A press beside the handle changes the value without tracking, too.
    if (moved && (moved->isContinuous() || !isPressed_))
        run([&] { moved->userDidMove(position); });
}

void PanelSlider::mousePressEvent(QMouseEvent* event) {
    isPressed_ = true;
    QSlider::mousePressEvent(event);
}

void PanelSlider::mouseReleaseEvent(QMouseEvent* event) {
    isPressed_ = false;
    QSlider::mouseReleaseEvent(event);
    if (const auto moved = slider(); moved && value() != moved->positionOf(moved->value()))
        report(value());
}

void PanelSlider::applySettings() {
    const QSignalBlocker blocker(this); // the handler is only for changes by the user
    const auto slider = this->slider();
    setOrientation(slider->isVertical() ? Qt::Vertical : Qt::Horizontal);
    setTracking(slider->isContinuous());
    setRange(0, slider->intervals());
    setSingleStep(std::max(1, slider->intervals() / 100));
    setPageStep(std::max(1, slider->intervals() / 10));
    setTickPosition(slider->numberOfTickMarks() > 1 ? QSlider::TicksBelow : QSlider::NoTicks);
    setValue(slider->positionOf(slider->value()));
    update();
}

void PanelSlider::paintEvent(QPaintEvent* event) {
    const auto slider = this->slider();
    if (slider && slider->numberOfTickMarks() > 1) {
        const int count = slider->numberOfTickMarks();
        const int length = slider->isVertical() ? height() : width();
        const double distance = (length - kSliderHandleSide) / (count - 1);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setOpacity(isEnabled() ? 1 : kPanelDisabledOpacity);
        if (distance >= kSmallestTickDistance)
            paintSliderTicks(painter, rect(), orientation(), distance, palette());
    }
    QSlider::paintEvent(event);
}

} // namespace platform::qt
