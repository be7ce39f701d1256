#include "platform/qt/InputEvents.h"

#include "platform/qt/Modifiers.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyleHints>
#include <QUrl>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <utility>

namespace platform::qt {
namespace {

constexpr double kUnitsPerNotch = 120; // of QWheelEvent::angleDelta

std::int32_t buttonNumber(Qt::MouseButton button) {
    constexpr std::array kOrder{Qt::LeftButton, Qt::RightButton, Qt::MiddleButton, Qt::BackButton,
                                Qt::ForwardButton};
    const auto found = std::find(kOrder.begin(), kOrder.end(), button);
    return static_cast<std::int32_t>(found - kOrder.begin());
}

constexpr std::array<std::pair<Qt::Key, Key>, 15> kKeys{{
    {Qt::Key_Return, Key::Return},
    {Qt::Key_Enter, Key::Return},
    {Qt::Key_Escape, Key::Escape},
    {Qt::Key_Tab, Key::Tab},
    {Qt::Key_Backtab, Key::Tab},
    {Qt::Key_Backspace, Key::Backspace},
    {Qt::Key_Delete, Key::Delete},
    {Qt::Key_Left, Key::Left},
    {Qt::Key_Right, Key::Right},
    {Qt::Key_Up, Key::Up},
    {Qt::Key_Down, Key::Down},
    {Qt::Key_PageUp, Key::PageUp},
    {Qt::Key_PageDown, Key::PageDown},
    {Qt::Key_Home, Key::Home},
    {Qt::Key_End, Key::End},
}};

Key keyNamed(int key) {
    const auto* const found = std::find_if(kKeys.begin(), kKeys.end(),
                                           [key](const auto& entry) { return entry.first == key; });
    return found == kKeys.end() ? Key::None : found->second;
}

/// Returns what the key enters. With Control that is a control character; the key's own character
/// is returned instead.
QString enteredText(const QKeyEvent& event) {
    const bool isPlainKey = event.key() >= Qt::Key_Space && event.key() < Qt::Key_Escape;
    if ((event.modifiers() & Qt::ControlModifier) && isPlainKey)
        return QString(QChar(event.key())).toLower();
    const QString text = event.text();
    return !text.isEmpty() && text.front().isPrint() ? text : QString();
}

} // namespace

Event inputEvent(const QMouseEvent& event, std::int32_t clickCount) {
    return {.modifierFlags = modifierFlags(event.modifiers()),
            .clickCount = clickCount,
            .buttonNumber = event.button() == Qt::NoButton ? 0 : buttonNumber(event.button())};
}

WheelEvent inputEvent(const QWheelEvent& event) {
    // With Alt, Qt exchanges the axes.
    const QPoint angle =
        event.modifiers() & Qt::AltModifier ? event.angleDelta().transposed() : event.angleDelta();
    // Qt counts turns to the left as positive.
    return {.deltaX = -angle.x() / kUnitsPerNotch,
            .deltaY = angle.y() / kUnitsPerNotch,
            .modifierFlags = modifierFlags(event.modifiers())};
}

KeyEvent inputEvent(const QKeyEvent& event) {
    const Key key = keyNamed(event.key());
    return {.key = key,
            .text = key == Key::None ? enteredText(event).toStdString() : std::string(),
            .modifierFlags = modifierFlags(event.modifiers())};
}

DroppedData inputEvent(const QDropEvent& event) {
    DroppedData data;
    for (const QUrl& url : event.mimeData()->urls())
        if (url.isLocalFile())
            data.files.push_back(url.toLocalFile().toStdString());
    if (data.files.empty()) // otherwise the text is only the files' names again
        data.text = event.mimeData()->text().toStdString();
    return data;
}

Qt::Key qtKey(Key key) {
    const auto* const found = std::find_if(
        kKeys.begin(), kKeys.end(), [key](const auto& entry) { return entry.second == key; });
    return found == kKeys.end() ? Qt::Key_unknown : found->first;
}

std::int32_t ClickCounter::count(const QMouseEvent& press) {
    const auto* hints = QGuiApplication::styleHints();
    const QPoint position = press.globalPosition().toPoint();
    const bool soon =
        press.timestamp() - lastTime_ <= static_cast<quint64>(hints->mouseDoubleClickInterval());
    const bool near =
        (position - lastPosition_).manhattanLength() <= hints->mouseDoubleClickDistance();
    count_ = soon && near && press.button() == lastButton_ ? count_ + 1 : 1;
    lastTime_ = press.timestamp();
    lastPosition_ = position;
    lastButton_ = press.button();
    return count_;
}

} // namespace platform::qt
