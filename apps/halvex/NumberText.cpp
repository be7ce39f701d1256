#include "apps/halvex/NumberText.h"

#include "platform/qt/Strings.h"

#include <QRegularExpression>

#include <algorithm>

using platform::qt::qString;

namespace apps {
namespace {

constexpr QChar kMinus(0x2212);

/// Digits of any script as 0 to 9, and every minus sign as the plain one.
QString plainCharacters(const QString& text) {
    QString plain;
    for (const QChar character : text) {
        if (character.isDigit())
            plain += QChar('0' + character.digitValue());
        else
            plain += character == kMinus ? QChar('-') : character;
    }
    return plain;
}

/// Spaces of any width part groups where one of them does.
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

QString shownNumber(std::string_view number, const QLocale& locale) {
    const std::size_t begin = number.starts_with('-') ? 1 : 0;
    const std::size_t mark = std::min(number.find('e'), number.size());
    const std::size_t point = std::min(number.find('.'), mark);
    QString shown = begin > 0 ? QString(kMinus) : QString();
    shown += grouped(qString(number.substr(begin, point - begin)), locale);
    if (point < mark)
        shown += locale.decimalPoint() +
                 localDigits(qString(number.substr(point + 1, mark - point - 1)), locale);
    QString exponent = qString(number.substr(mark));
    return shown + exponent.remove('+').replace('-', kMinus);
}

QString copiedNumber(std::string_view number, const QLocale& locale) {
    return qString(number).replace('.', locale.decimalPoint()).remove('+');
}

std::string readNumber(const QString& text, const QLocale& locale) {
    const QString plain = plainCharacters(text.trimmed());
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
