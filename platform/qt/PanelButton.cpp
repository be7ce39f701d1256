#include "platform/qt/PanelButton.h"

#include "platform/qt/QtImage.h"
#include "platform/qt/Strings.h"
#include "platform/qt/TextLine.h"
#include "platform/runtime/Guard.h"

#include <QKeyEvent>
#include <QPainter>

#include <cmath>
#include <utility>

namespace platform::qt {
namespace {

constexpr double kPlateRadius = 4;
constexpr double kPressedOpacity = 0.6;
const QColor kPlate(255, 255, 255, 40);
const QColor kRim(255, 255, 255, 110);
const QColor kFocus(255, 255, 255, 90);

QRectF centered(QSizeF size, const QRectF& area) {
    QRectF result({}, size);
    result.moveCenter(area.center());
    return result;
}

} // namespace

PanelButton::PanelButton(std::shared_ptr<Button> button, std::string owner, QWidget* parent)
    : QAbstractButton(parent), button_(std::move(button)), owner_(std::move(owner)) {
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this, [this] {
        // The action may destroy the panel, including this widget.
        const auto clicked = button_;
        runGuarded(owner_, [&] { clicked->performClick(); });
    });
    button_->setChangeHandler([this] { applySettings(); });
    applySettings();
    show();
}

PanelButton::~PanelButton() {
    button_->setChangeHandler({});
}

void PanelButton::applySettings() {
    const Rect frame = button_->frame();
    const double top = parentWidget()->height() - frame.origin.y - frame.size.height;
    setGeometry(QRectF(frame.origin.x, top, frame.size.width, frame.size.height).toAlignedRect());
    const QString label = qString(button_->accessibilityLabel());
    setAccessibleName(label);
    setToolTip(button_->title().empty() ? label : QString());
    update();
}

QSize PanelButton::sizeHint() const {
    return size();
}

void PanelButton::keyPressEvent(QKeyEvent* event) {
    // A panel has no default button: Return clicks the focused button.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void PanelButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    paintPlate(painter);
    if (isDown())
        painter.setOpacity(kPressedOpacity);
    const auto* const picture = dynamic_cast<const QtImage*>(button_->look().image.get());
    if (picture && button_->look().imagePosition != ImagePosition::NoImage) {
        const QSizeF size(picture->size().width, picture->size().height);
        painter.drawImage(centered(size, rect()), picture->pixelsForScale(devicePixelRatioF()));
    }
    if (!button_->title().empty() && button_->look().imagePosition != ImagePosition::ImageOnly)
        paintTitle(painter);
}

void PanelButton::paintPlate(QPainter& painter) const {
    const QRectF plate = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool hasRing = hasFocus() && button_->look().focusRingType != FocusRingType::None;
    painter.setPen(Qt::NoPen);
    if (button_->look().bordered) {
        painter.setPen(kRim);
        painter.setBrush(kPlate);
        painter.drawRoundedRect(plate, kPlateRadius, kPlateRadius);
    }
    // Keyboard users need to see the focus on buttons without a ring, too.
    if (hasFocus() && !hasRing) {
        painter.setBrush(kFocus);
        painter.drawRoundedRect(plate, kPlateRadius, kPlateRadius);
    }
    if (hasRing) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().highlight().color(), 2));
        painter.drawRoundedRect(plate, kPlateRadius, kPlateRadius);
    }
}

void PanelButton::paintTitle(QPainter& painter) const {
    Fonts fonts;
    const TextLine line(button_->attributedTitle(), fonts, font(), FontSmoothing::Greyscale);
    const QRectF place = centered({line.size().width, line.size().height}, rect());
    painter.translate(place.left(), std::round(place.top()));
    painter.setPen(palette().windowText().color());
    line.fill(painter);
}

} // namespace platform::qt
