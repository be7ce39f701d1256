#include "apps/halvex/KeyButton.h"

#include <QPainter>
#include <QTimer>

#include <algorithm>

namespace apps {
namespace {

constexpr int kFlash = 90; // milliseconds
constexpr qreal kRadius = 7;
constexpr QSize kSize(64, 48);
constexpr QSize kMinimum(36, 28);

QColor mixed(const QColor& ground, const QColor& other, qreal share) {
    const auto mix = [share](float from, float to) {
        return static_cast<float>(from + (to - from) * share);
    };
    return QColor::fromRgbF(mix(ground.redF(), other.redF()), mix(ground.greenF(), other.greenF()),
                            mix(ground.blueF(), other.blueF()));
}

} // namespace

KeyButton::KeyButton(const QString& label, Kind kind) : kind_(kind) {
    setText(label);
    setFocusPolicy(Qt::TabFocus); // a click leaves the focus to whoever types
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void KeyButton::flash() {
    setDown(true);
    QTimer::singleShot(kFlash, this, [this] { setDown(false); });
}

QSize KeyButton::sizeHint() const {
    return kSize;
}

QSize KeyButton::minimumSizeHint() const {
    return kMinimum;
}

QColor KeyButton::ground() const {
    const QColor window = palette().color(QPalette::Active, QPalette::Window);
    const QColor text = palette().color(QPalette::Active, QPalette::WindowText);
    const bool isDark = window.lightness() < 128;
    if (kind_ == Kind::Operator)
        return palette().color(QPalette::Active, QPalette::Highlight);
    if (kind_ == Kind::Function)
        return mixed(window, text, isDark ? 0.12 : 0.14);
    return isDark ? mixed(window, text, 0.28) : mixed(window, Qt::white, 0.85);
}

void KeyButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor field = ground();
    QColor label =
        palette().color(QPalette::Active,
                        kind_ == Kind::Operator ? QPalette::HighlightedText : QPalette::WindowText);
    if (isChecked())
        std::swap(field, label);
    if (isDown() || underMouse())
        field = mixed(field, label, isDown() ? 0.3 : 0.08);
    if (!isEnabled())
        label = mixed(field, label, 0.4);
    const QRectF area = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Active, QPalette::WindowText), 2)
                              : Qt::NoPen);
    painter.setBrush(field);
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
