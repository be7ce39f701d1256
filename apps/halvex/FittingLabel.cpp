#include "apps/halvex/FittingLabel.h"

#include <QFontMetrics>

namespace apps {
namespace {
constexpr int kMinFontSize = 10; // pixels
}

FittingLabel::FittingLabel(int maxFontSize) : maxFontSize_(maxFontSize) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setTextFormat(Qt::PlainText);
    setFixedHeight(maxFontSize * 3 / 2);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void FittingLabel::showText(const QString& text) {
    setText(text);
    fit();
}

QSize FittingLabel::minimumSizeHint() const {
    return {0, height()};
}

void FittingLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    fit();
}

void FittingLabel::fit() {
    QFont face = font();
    int size = maxFontSize_;
    do
        face.setPixelSize(size);
    while (QFontMetrics(face).horizontalAdvance(text()) > width() - 4 && --size >= kMinFontSize);
    setFont(face);
}

} // namespace apps
