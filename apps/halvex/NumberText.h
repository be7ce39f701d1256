#pragma once

#include <QLocale>
#include <QString>

#include <string>
#include <string_view>

namespace apps {

// Conversions between numbers as Calculator::display returns them and text in the notation of a
// locale: its decimal separator, group separator and digits.

/// Formats a number for the display, with group separators and the minus sign U+2212.
QString formatForDisplay(std::string_view number, const QLocale& locale);

/// Formats a number for other programs, without group separators and with an ASCII hyphen.
QString formatForClipboard(std::string_view number, const QLocale& locale);

/// Converts text from another program into the form that parseDecimal expects; invalid text stays
/// invalid. Group separators are removed if they are where the locale puts them. If the text is not
/// a number in the locale's notation, "." is the decimal separator: "0.5" is one half in every
/// locale, but "1.234" is 1234 in locales that group digits with points.
std::string normalizeNumber(const QString& text, const QLocale& locale);

} // namespace apps
