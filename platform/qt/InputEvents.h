#pragma once

#include "platform/values/Event.h"
#include "platform/values/Input.h"

#include <QPoint>
#include <Qt>

class QDropEvent;
class QKeyEvent;
class QMouseEvent;
class QWheelEvent;

/// Translates Qt's input events to those that views receive. The location stays at the origin.
namespace platform::qt {

/// @p clickCount is that of a ClickCounter; 1 for an event that is not a press.
Event inputEvent(const QMouseEvent& event, std::int32_t clickCount = 1);
WheelEvent inputEvent(const QWheelEvent& event);
KeyEvent inputEvent(const QKeyEvent& event);
DroppedData inputEvent(const QDropEvent& event);

/// Returns Qt's key, and Qt::Key_unknown for Key::None.
Qt::Key qtKey(Key key);

/// Counts double and triple clicks.
class ClickCounter {
  public:
    /// Returns the click count of a press: 1 more than that of the previous press if this one has
    /// the same button and follows soon and nearby, otherwise 1.
    std::int32_t count(const QMouseEvent& press);

  private:
    Qt::MouseButton lastButton_ = Qt::NoButton;
    QPoint lastPosition_;
    quint64 lastTime_ = 0; // milliseconds
    std::int32_t count_ = 0;
};

} // namespace platform::qt
