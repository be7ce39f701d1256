#pragma once

#include <QLocale>
#include <QString>

#include <string>
#include <string_view>

namespace apps {

/// Numbers as decimalText writes them, in the ways of a locale: its decimal sign, its digits, its
/// groups of thousands.

/// For the eye: with groups and a true minus sign.
QString shownNumber(std::string_view number, const QLocale& locale);

/// For other programs: without groups, with a plain minus sign.
QString copiedNumber(std::string_view number, const QLocale& locale);

/// What people copy elsewhere, for decimalOf, which judges it. Groups are heard where they are
/// groups; what is no number of the locale's is taken as one with a point: "0.5" is a half
/// everywhere, "1.234" is more than a thousand where the point parts groups.
std::string readNumber(const QString& text, const QLocale& locale);

} // namespace apps
