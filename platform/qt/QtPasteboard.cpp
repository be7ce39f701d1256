#include "platform/qt/QtPasteboard.h"

#include "platform/qt/Strings.h"

#include <QClipboard>
#include <QGuiApplication>

namespace platform::qt {

void QtPasteboard::setString(std::string_view text) {
    QGuiApplication::clipboard()->setText(qString(text));
}

} // namespace platform::qt
