#pragma once

#include "platform/qt/Strings.h"

#include <QTextDocument>

namespace platform::qt {

/// Converts UTF-8 to text that QToolTip does not mistake for rich text.
inline QString toolTipText(std::string_view text) {
    const QString plain = qString(text);
    return Qt::mightBeRichText(plain) ? Qt::convertFromPlainText(plain) : plain;
}

} // namespace platform::qt
