#pragma once

#include "platform/base/Watch.h"

#include <QRect>

#include <functional>
#include <memory>

class QWidget;

namespace platform::qt {

/// Whether windows can be translucent: false on an X server without a compositing manager, true
/// everywhere else. May change while the program runs. Main thread.
bool windowsAreTranslucent();

/// Calls @p handler after a compositing manager has started or exited on the X server. Main thread.
std::unique_ptr<Watch> watchTranslucency(std::function<void()> handler);

/// Restricts the area of a top-level widget that receives the mouse to @p area, in the widget's
/// coordinates; the mouse passes through the rest. Does nothing before the window has been created
/// or without an X server. Main thread.
void setInputArea(const QWidget& window, const QRect& area);

} // namespace platform::qt
