#include "platform/expat/Scalars.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <locale>
#include <sstream>

namespace platform::expat {
namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kNoDigit = 64;
constexpr std::uint8_t kSkipped = 65;
constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kLastYear = 999'999'999;

constexpr auto kBase64Values = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNoDigit);
    for (const char space : kSpace)
        values[static_cast<unsigned char>(space)] = kSkipped;
    std::uint8_t value = 0;
    for (const char digit : kBase64)
        values[static_cast<unsigned char>(digit)] = value++;
    return values;
}();

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

bool skip(std::string_view& text, char expected) {
    if (!text.starts_with(expected))
        return false;
    text.remove_prefix(1);
    return true;
}

/// Removes all leading digits from @p text and returns their value. Returns std::nullopt if there
/// are fewer than @p least or more than @p most of them.
std::optional<std::int64_t> takeDigits(std::string_view& text, std::size_t least,
                                       std::size_t most) {
    const auto count = std::min(text.find_first_not_of("0123456789"), text.size());
    if (count < least || count > most)
        return std::nullopt;
    std::int64_t number = 0;
    std::from_chars(text.data(), text.data() + count, number);
    text.remove_prefix(count);
    return number;
}

// Conversion between dates and days since 1970. Eras have 400 years, which begin on March 1.

constexpr std::int64_t kDaysPerEra = 146'097;
constexpr std::int64_t kDaysFromEraTo1970 = 719'468;

struct CivilDate {
    std::int64_t year = 0;
    std::int64_t month = 0;
    std::int64_t day = 0;
    friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

std::int64_t floorDivide(std::int64_t dividend, std::int64_t divisor) {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

std::int64_t daysFromCivil(const CivilDate& date) {
    const std::int64_t year = date.year - (date.month <= 2 ? 1 : 0);
    const std::int64_t era = floorDivide(year, 400);
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t monthFromMarch = (date.month + 9) % 12;
    const std::int64_t dayOfYear = (153 * monthFromMarch + 2) / 5 + date.day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * kDaysPerEra + dayOfEra - kDaysFromEraTo1970;
}

CivilDate civilFromDays(std::int64_t days) {
    days += kDaysFromEraTo1970;
    const std::int64_t era = floorDivide(days, kDaysPerEra);
    const std::int64_t dayOfEra = days - era * kDaysPerEra;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const std::int64_t month = (monthFromMarch + 2) % 12 + 1;
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month,
            dayOfYear - (153 * monthFromMarch + 2) / 5 + 1};
}

void appendPadded(std::string& out, std::int64_t number, std::size_t width) {
    const std::string digits = std::to_string(number);
    out.append(width - std::min(width, digits.size()), '0').append(digits);
}

} // namespace

std::optional<PropertyList> parseInteger(std::string_view text) {
    text = trimmed(text);
    const bool negative = skip(text, '-');
    if (!negative)
        skip(text, '+');
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal)
        text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), magnitude, hexadecimal ? 16 : 10);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    if (!negative)
        return PropertyList(magnitude);
    constexpr std::uint64_t kLargestNegative = std::uint64_t{1} << 63;
    if (magnitude > kLargestNegative)
        return std::nullopt;
    return PropertyList(static_cast<std::int64_t>(0 - magnitude));
}

std::optional<PropertyList> parseReal(std::string_view text) {
    text = trimmed(text);
    if (skip(text, '+') && text.starts_with('-'))
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size())
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // from_chars does not tell which: a stream fails only if the value is too large.
        std::istringstream stream{std::string(text)};
        stream.imbue(std::locale::classic());
        return stream >> value ? std::optional(PropertyList(value)) : std::nullopt;
    }
    return error == std::errc() ? std::optional(PropertyList(value)) : std::nullopt;
}

std::optional<PropertyList> parseDate(std::string_view text) {
    text = trimmed(text);
    const bool negative = skip(text, '-');
    const auto year = takeDigits(text, 1, 9);
    if (!year)
        return std::nullopt;

    struct Field {
        char before;
        std::int64_t least;
        std::int64_t most;
    };
    constexpr std::array<Field, 5> kFields{
        {{'-', 1, 12}, {'-', 1, 31}, {'T', 0, 23}, {':', 0, 59}, {':', 0, 59}}};
    std::array<std::int64_t, kFields.size()> values{};
    for (std::size_t i = 0; i < kFields.size(); ++i) {
        if (!skip(text, kFields[i].before))
            return std::nullopt;
        const auto value = takeDigits(text, 2, 2);
        if (!value || *value < kFields[i].least || *value > kFields[i].most)
            return std::nullopt;
        values[i] = *value;
    }
    const auto [month, day, hour, minute, second] = values;
    const CivilDate date{negative ? -*year : *year, month, day};
    const std::int64_t days = daysFromCivil(date);
    if (text != "Z" || civilFromDays(days) != date) // February 30 converts back to March 1 or 2
        return std::nullopt;
    return PropertyList(
        PropertyList::Date{days * kSecondsPerDay + (hour * 60 + minute) * 60 + second});
}

std::optional<PropertyList> parseData(std::string_view text) {
    PropertyList::Data data;
    data.bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const char character : text) {
        const std::uint8_t value = kBase64Values[static_cast<unsigned char>(character)];
        if (value == kSkipped)
            continue;
        if (character == '=') {
            ++padding;
            continue;
        }
        if (value == kNoDigit || padding > 0)
            return std::nullopt;
        bits = bits << 6 | value;
        if (++digits % 4 != 0)
            continue;
        for (const int shift : {16, 8, 0})
            data.bytes.push_back(static_cast<std::uint8_t>(bits >> shift));
    }
    const std::size_t rest = digits % 4;
    if (rest == 1 || padding != (4 - rest) % 4)
        return std::nullopt;
    if (rest >= 2)
        data.bytes.push_back(static_cast<std::uint8_t>(rest == 2 ? bits >> 4 : bits >> 10));
    if (rest == 3)
        data.bytes.push_back(static_cast<std::uint8_t>(bits >> 2));
    return PropertyList(std::move(data));
}

std::string realText(double value) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

std::optional<std::string> dateText(PropertyList::Date date) {
    const std::int64_t days = floorDivide(date.seconds, kSecondsPerDay);
    const std::int64_t second =
        (date.seconds % kSecondsPerDay + kSecondsPerDay) % kSecondsPerDay; // no overflow
    const CivilDate civil = civilFromDays(days);
    if (civil.year > kLastYear || civil.year < -kLastYear)
        return std::nullopt;
    std::string text = civil.year < 0 ? "-" : "";
    appendPadded(text, civil.year < 0 ? -civil.year : civil.year, 4);
    const std::array<std::pair<char, std::int64_t>, 5> fields{{{'-', civil.month},
                                                               {'-', civil.day},
                                                               {'T', second / 3600},
                                                               {':', second / 60 % 60},
                                                               {':', second % 60}}};
    for (const auto& [before, value] : fields) {
        text += before;
        appendPadded(text, value, 2);
    }
    return text += 'Z';
}

std::string dataText(const PropertyList::Data& data, std::string_view indent) {
    constexpr std::size_t kBytesPerLine = 57;
    const std::size_t size = data.bytes.size();
    std::string text;
    text.reserve(size / 3 * 4 + (size / kBytesPerLine + 1) * (indent.size() + 5));
    for (std::size_t i = 0; i < size; i += 3) {
        if (i % kBytesPerLine == 0)
            text.append(indent);
        const std::size_t count = std::min<std::size_t>(3, size - i);
        std::uint32_t bits = 0;
        for (std::size_t j = 0; j < 3; ++j)
            bits = bits << 8 | (j < count ? data.bytes[i + j] : 0U);
        for (std::size_t j = 0; j < 4; ++j)
            text += j <= count ? kBase64[bits >> (18 - 6 * j) & 63] : '=';
        if ((i + 3) % kBytesPerLine == 0 || i + 3 >= size)
            text += '\n';
    }
    return text;
}

} // namespace platform::expat
