#include "apps/halvex/NumberText.h"

#include "platform/qt/Strings.h"

#include <QRegularExpression>

#include <algorithm>

using platform::qt::qString;

namespace apps {
namespace {

constexpr QChar kMinusSign(0x2212);

/// Replaces the digits of any script with 0 to 9, and U+2212 with an ASCII hyphen.
QString withAsciiDigits(const QString& text) {
    QString plain;
    for (const QChar character : text) {
        if (character.isDigit())
            plain += QChar('0' + character.digitValue());
        else
            plain += character == kMinusSign ? QChar('-') : character;
    }
    return plain;
}

/// If the separator is a space, the pattern matches spaces of any width.
QString groupPattern(const QString& separator) {
    const bool isSpace = !separator.isEmpty() && separator[0].isSpace();
    return isSpace ? QString("[\\x{20}\\x{a0}\\x{202f}\\x{2009}]")
                   : QRegularExpression::escape(separator);
}

QRegularExpression numberPattern(const QLocale& locale) {
    return QRegularExpression(
        QString("^\\+?(-?)(\\d{1,3}(?:%1\\d{2,3})*%1\\d{3}|\\d*)(?:%2(\\d*))?([eE][+-]?\\d+)?$")
            .arg(groupPattern(locale.groupSeparator()),
                 QRegularExpression::escape(locale.decimalPoint())));
}

QString localDigits(const QString& digits, const QLocale& locale) {
    const QString zero = locale.zeroDigit();
    if (zero == "0" || zero.size() != 1)
        return digits;
    QString local;
    for (const QChar digit : digits)
        local += QChar(zero[0].unicode() + digit.digitValue());
    return local;
}

QString grouped(const QString& whole, const QLocale& locale) {
    if (locale.numberOptions() & QLocale::OmitGroupSeparator)
        return localDigits(whole, locale);
    return locale.toString(whole.toLongLong());
}

} // namespace

QString formatForDisplay(std::string_view number, const QLocale& locale) {
    const std::size_t begin = number.starts_with('-') ? 1 : 0;
    const std::size_t exponentMark = std::min(number.find('e'), number.size());
    const std::size_t point = std::min(number.find('.'), exponentMark);
    QString text = begin > 0 ? QString(kMinusSign) : QString();
    text += grouped(qString(number.substr(begin, point - begin)), locale);
    if (point < exponentMark)
        text += locale.decimalPoint() +
                localDigits(qString(number.substr(point + 1, exponentMark - point - 1)), locale);
    QString exponent = qString(number.substr(exponentMark));
    return text + exponent.remove('+').replace('-', kMinusSign);
}

QString formatForClipboard(std::string_view number, const QLocale& locale) {
    return qString(number).replace('.', locale.decimalPoint()).remove('+');
}

std::string normalizeNumber(const QString& text, const QLocale& locale) {
    const QString plain = withAsciiDigits(text.trimmed());
    const auto match = numberPattern(locale).match(plain);
    if (!match.hasMatch())
        return plain.toStdString();
    QString whole = match.captured(2);
    whole.removeIf([](QChar character) { return !character.isDigit(); });
    const QString fraction = match.captured(3);
    return (match.captured(1) + whole + (fraction.isEmpty() ? "" : '.' + fraction) +
            match.captured(4))
        .toStdString();
}

} // namespace apps
