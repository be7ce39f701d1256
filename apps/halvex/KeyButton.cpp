#include "apps/halvex/KeyButton.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace apps {
namespace {

constexpr int kFlashTime = 90; // milliseconds
constexpr qreal kRadius = 7;
constexpr QSize kSize(64, 48);
constexpr QSize kMinimumSize(36, 28);

QColor blend(const QColor& base, const QColor& other, qreal share) {
    const auto mix = [share](float from, float to) {
        return static_cast<float>(from + (to - from) * share);
    };
    return QColor::fromRgbF(mix(base.redF(), other.redF()), mix(base.greenF(), other.greenF()),
                            mix(base.blueF(), other.blueF()));
}

} // namespace

KeyButton::KeyButton(const QString& label, Kind kind) : kind_(kind) {
    setText(label);
    setFocusPolicy(Qt::TabFocus); // a click keeps the keyboard focus in the window
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void KeyButton::flash() {
    setDown(true);
    QTimer::singleShot(kFlashTime, this, [this] { setDown(false); });
}

QSize KeyButton::sizeHint() const {
    return kSize;
}

QSize KeyButton::minimumSizeHint() const {
    return kMinimumSize;
}

QColor KeyButton::backgroundColour() const {
    const QColor window = palette().color(QPalette::Active, QPalette::Window);
    const QColor text = palette().color(QPalette::Active, QPalette::WindowText);
    const bool isDark = window.lightness() < 128;
    if (kind_ == Kind::Operator)
        return palette().color(QPalette::Active, QPalette::Highlight);
    if (kind_ == Kind::Function)
        return blend(window, text, isDark ? 0.12 : 0.14);
    return isDark ? blend(window, text, 0.28) : blend(window, Qt::white, 0.85);
}

QColor KeyButton::labelColour() const {
    const auto role = kind_ == Kind::Operator ? QPalette::HighlightedText : QPalette::WindowText;
    return palette().color(QPalette::Active, role);
}

void KeyButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor background = backgroundColour();
    QColor label = labelColour();
    if (isChecked())
        std::swap(background, label);
    if (isDown() || underMouse())
        background = blend(background, label, isDown() ? 0.3 : 0.08);
    if (!isEnabled())
        label = blend(background, label, 0.4);
    const QRectF area = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Active, QPalette::WindowText), 2)
                              : Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(area, kRadius, kRadius);
    QFont face = font();
    face.setPixelSize(std::max(11, std::min(height() * 2 / 5, 24)));
    if (text().size() > 1)
        face.setPixelSize(face.pixelSize() * 3 / 4);
    painter.setFont(face);
    painter.setPen(label);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

void KeyButton::enterEvent(QEnterEvent*) {
    update();
}

void KeyButton::leaveEvent(QEvent*) {
    update();
}

} // namespace apps
