#include "platform/qt/PanelLabel.h"

#include "platform/qt/Strings.h"

#include <cmath>

namespace platform::qt {
namespace {

Qt::Alignment horizontal(TextAlignment alignment) {
    switch (alignment) {
    case TextAlignment::Left:
        return Qt::AlignLeft;
    case TextAlignment::Right:
        return Qt::AlignRight;
    case TextAlignment::Center:
        return Qt::AlignHCenter;
    }
    return Qt::AlignLeft;
}

} // namespace

PanelLabel::PanelLabel(std::shared_ptr<Label> label, std::string owner, QWidget* parent)
    : QLabel(parent), PanelControl(*this, std::move(label), std::move(owner)) {
    setTextFormat(Qt::PlainText);
    setMouseTracking(true); // the panel's cursor depends on the position
    controlDidChange();
}

void PanelLabel::applySettings() {
    const auto label = control<Label>();
    QFont font = parentWidget()->font();
    const double scale =
        systemFontSize(label->controlSize()) / systemFontSize(ControlSize::Regular);
    font.setPixelSize(static_cast<int>(std::lround(QFontInfo(font).pixelSize() * scale)));
    setFont(font);
    setWordWrap(label->wraps());
    // Absolute: Qt would swap left and right for a text that is written from right to left.
    setAlignment(Qt::AlignAbsolute | horizontal(label->alignment()) |
                 (label->wraps() ? Qt::AlignTop : Qt::AlignVCenter));
    PanelControl* const named = displayOf(label->namedControl().get());
    setBuddy(named ? &named->widget() : nullptr);
    // With a buddy, an ampersand would underline the next letter.
    setText(named ? plainText().replace('&', "&&") : plainText());
    if (named)
        named->updateAccessibleName();
}

QString PanelLabel::plainText() const {
    const auto label = control<Label>();
    return label ? qString(label->text()) : QString();
}

PanelControl* PanelLabel::displayOf(const Control* control) const {
    if (!control)
        return nullptr;
    for (QObject* child : parentWidget()->findChildren<QObject*>())
        if (auto* shown = dynamic_cast<PanelControl*>(child); shown && shown->shows(*control))
            return shown;
    return nullptr;
}

} // namespace platform::qt
