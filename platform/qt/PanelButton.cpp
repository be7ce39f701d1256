#include "platform/qt/PanelButton.h"

#include "platform/qt/PanelPainting.h"
#include "platform/qt/PanelStyle.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/TextLine.h"

#include <QKeyEvent>
#include <QPainter>

#include <cmath>
#include <utility>

namespace platform::qt {
namespace {

constexpr double kPressedOpacity = 0.6;

QRectF centered(QSizeF size, const QRectF& area) {
    QRectF result({}, size);
    result.moveCenter(area.center());
    return result;
}

} // namespace

PanelButton::PanelButton(std::shared_ptr<Button> button, std::string owner, QWidget* parent)
    : QAbstractButton(parent), PanelControl(*this, std::move(button), std::move(owner)) {
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (const auto clicked = control<Button>())
            run([&] { clicked->performClick(); });
    });
    controlDidChange();
}

void PanelButton::setDefault(bool isDefault) {
    isDefault_ = isDefault;
    update();
}

void PanelButton::applySettings() {
    const auto button = control<Button>();
    if (button->toolTip().empty() && button->title().empty())
        setToolTip(accessibleName());
    update();
}

QSize PanelButton::sizeHint() const {
    return size();
}

void PanelButton::keyPressEvent(QKeyEvent* event) {
    // Return clicks the focused button rather than the panel's default button.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void PanelButton::paintEvent(QPaintEvent*) {
    const auto button = control<Button>();
    if (!button)
        return;
    const Button::Look& look = button->look();
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setOpacity(isEnabled() ? 1 : kPanelDisabledOpacity);
    paintPlate(painter, *button);
    if (isDown())
        painter.setOpacity(kPressedOpacity);
    const auto* const picture = dynamic_cast<const QtImage*>(look.image.get());
    if (picture && look.imagePosition != ImagePosition::NoImage) {
        const QSizeF size(picture->size().width, picture->size().height);
        paintPanelImage(painter, *picture, centered(size, rect()), textColor(*button));
    }
    if (!button->title().empty() && look.imagePosition != ImagePosition::ImageOnly)
        paintTitle(painter, *button);
}

QColor PanelButton::textColor(const Button& button) const {
    const bool isFilled = isDefault_ && button.look().bordered;
    // The button is drawn paler as a whole while it is disabled.
    return palette().color(QPalette::Active,
                           isFilled ? QPalette::HighlightedText : QPalette::WindowText);
}

void PanelButton::paintPlate(QPainter& painter, const Button& button) const {
    const PanelColors colors(palette());
    const QRectF plate = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const bool hasRing = hasFocus() && button.look().focusRingType != FocusRingType::None;
    painter.setPen(Qt::NoPen);
    if (button.look().bordered) {
        if (!isDefault_)
            painter.setPen(colors.plateRim);
        painter.setBrush(isDefault_ ? colors.accent : colors.plate);
        painter.drawRoundedRect(plate, kPanelControlRadius, kPanelControlRadius);
    }
    // Keyboard users need to see the focus on buttons without a ring, too.
    if (hasFocus() && !hasRing) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.focusFill);
        painter.drawRoundedRect(plate, kPanelControlRadius, kPanelControlRadius);
    }
    if (hasRing)
        paintFocusRing(painter, rect(), isDefault_ ? colors.accentText : colors.accent);
}

void PanelButton::paintTitle(QPainter& painter, const Button& button) const {
    Fonts fonts;
    const TextLine line(button.attributedTitle(), fonts, font(), FontSmoothing::Greyscale);
    const QRectF place = centered({line.size().width, line.size().height}, rect());
    painter.translate(place.left(), std::round(place.top()));
    painter.setPen(textColor(button));
    line.fill(painter);
}

} // namespace platform::qt
