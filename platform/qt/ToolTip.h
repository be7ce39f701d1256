#pragma once

#include <QPoint>
#include <QRect>

#include <string_view>

class QWidget;

namespace platform::qt {

/// Shows a tooltip for @p area of @p widget, or for the whole widget. The text is UTF-8 and shown
/// literally, even if it looks like rich text; an empty text hides the tooltip that is shown.
/// @p position is that of the pointer on the screen. Main thread.
void showToolTip(QPoint position, std::string_view text, QWidget& widget, const QRect& area = {});

} // namespace platform::qt
