#include "apps/halvex/Decimal.h"

#include <algorithm>
#include <charconv>

namespace apps {
namespace {

constexpr int kMaxLeadingZeros = 6;
constexpr std::size_t kMaxTextLength = 1000;

std::string withoutTrailingZeros(std::string digits) {
    digits.erase(digits.find_last_not_of('0') + 1);
    return digits;
}

std::string formatPlain(const std::string& digits, int exponent) {
    if (exponent < 0)
        return "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole)
        return digits + std::string(whole - digits.size(), '0');
    return digits.substr(0, whole) + '.' + digits.substr(whole);
}

std::string formatScientific(const std::string& digits, int exponent) {
    const std::string fraction = digits.size() > 1 ? '.' + digits.substr(1) : "";
    return digits.substr(0, 1) + fraction + (exponent < 0 ? "e-" : "e+") +
           std::to_string(std::abs(exponent));
}

std::size_t skipDigits(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of("0123456789", at), text.size());
}

int parseExponent(std::string_view text) {
    int exponent = 0;
    std::from_chars(text.data(), text.data() + text.size(), exponent);
    return exponent;
}

bool isExponent(std::string_view text) {
    if (text.empty() || (text[0] != 'e' && text[0] != 'E'))
        return false;
    const std::size_t sign = text.size() > 1 && (text[1] == '-' || text[1] == '+') ? 1 : 0;
    const std::size_t digits = text.size() - 1 - sign;
    return digits >= 1 && digits <= 4 && skipDigits(text, 1 + sign) == text.size();
}

bool isNumber(std::string_view text) {
    const std::size_t begin = text.starts_with('-') ? 1 : 0;
    std::size_t at = skipDigits(text, begin);
    std::size_t digits = at - begin;
    if (at < text.size() && text[at] == '.') {
        const std::size_t fraction = at + 1;
        at = skipDigits(text, fraction);
        digits += at - fraction;
    }
    return digits > 0 && (at == text.size() || isExponent(text.substr(at)));
}

} // namespace

bool overflows(const Decimal& number) {
    return number.backend().order() > kMaxExponent;
}

bool underflows(const Decimal& number) {
    return number.backend().order() < -kMaxExponent;
}

std::string formatDecimal(const Decimal& number) {
    if (number == 0)
        return "0";
    // Boost formats it as "d.dddde+XX".
    const std::string text =
        Decimal(abs(number)).str(kDisplayDigits - 1, std::ios_base::scientific);
    const std::size_t exponentMark = text.find('e');
    const int exponent =
        parseExponent(text.substr(exponentMark + (text[exponentMark + 1] == '+' ? 2 : 1)));
    const std::string digits =
        withoutTrailingZeros(text.substr(0, 1) + text.substr(2, exponentMark - 2));
    const bool fitsPlain = exponent < kDisplayDigits && exponent >= -1 - kMaxLeadingZeros;
    return (number < 0 ? "-" : "") +
           (fitsPlain ? formatPlain(digits, exponent) : formatScientific(digits, exponent));
}

std::optional<Decimal> parseDecimal(std::string_view text) {
    if (text.size() > kMaxTextLength || !isNumber(text))
        return std::nullopt;
    const Decimal number{std::string(text)};
    if (overflows(number))
        return std::nullopt;
    return underflows(number) ? Decimal(0) : number;
}

} // namespace apps
