#include "extras/clock/ClockFormat.h"

#include "platform/base/NonCopyable.h"
#include "platform/base/Utf8.h"
#include "ui/NSMutableString-DateFormat.h"

#include <algorithm>
#include <array>
#include <langinfo.h>
#include <utility>

namespace extras::clock_format {
namespace {

constexpr std::size_t kMaximumFormatBytes = 256;
constexpr std::size_t kTextBufferBytes = 16384;

/// The locale of the environment, or "C" if that locale is not installed. Freed when the bundle's
/// code is unloaded.
class UserLocale : platform::NonCopyable {
  public:
    UserLocale() : locale_(newlocale(LC_ALL_MASK, "", nullptr)) {
        if (!locale_)
            locale_ = newlocale(LC_ALL_MASK, "C", nullptr);
    }
    ~UserLocale() { freelocale(locale_); }

    locale_t get() const { return locale_; }

  private:
    locale_t locale_;
};

} // namespace

locale_t userLocale() {
    static const UserLocale locale;
    return locale.get();
}

namespace {

std::string_view localeInfo(nl_item item) {
    return nl_langinfo_l(item, userLocale());
}

bool usesTwelveHourTime() {
    const std::string_view time = localeInfo(T_FMT);
    return std::any_of(time.begin(), time.end(),
                       [](char c) { return c == 'r' || c == 'I' || c == 'l' || c == 'p'; });
}

/// Returns the conversion of the day, with a dot in languages that write ordinal numbers with one.
std::string dayOfMonth() {
    const std::string_view date = localeInfo(_DATE_FMT);
    for (const char* day : {"%-d.", "%d.", "%e."})
        if (date.find(day) != std::string_view::npos)
            return "%-d.";
    return "%-d";
}

bool putsMonthFirst() {
    const std::string_view date = localeInfo(D_FMT);
    return date.find("%m") < date.find("%d");
}

/// Returns what a composite conversion stands for, or an empty string for any other.
std::string_view expansion(char conversion) {
    const std::array<std::pair<char, std::string_view>, 5> table{{
        {'T', "%H:%M:%S"},
        {'R', "%H:%M"},
        {'r', localeInfo(T_FMT_AMPM)},
        {'X', localeInfo(T_FMT)},
        {'c', localeInfo(D_T_FMT)},
    }};
    const auto* entry = std::ranges::find(table, conversion, &decltype(table)::value_type::first);
    return entry == table.end() ? std::string_view() : entry->second;
}

std::string expanded(std::string_view format, int depth) {
    // Some locales define one composite by another; no chain is longer than two.
    constexpr int kMaximumDepth = 3;
    std::string result;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%' || i + 1 == format.size()) {
            result += format[i];
            continue;
        }
        const char conversion = format[++i];
        const std::string_view replacement = expansion(conversion);
        if (!replacement.empty() && depth < kMaximumDepth)
            result += expanded(replacement, depth + 1);
        else
            result.append({'%', conversion});
    }
    return result;
}

/// Returns whether @p bytes are UTF-8 sequences without control characters.
bool isPlainText(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto first = static_cast<unsigned char>(bytes.front());
        const std::size_t length = platform::utf8SequenceLength(bytes);
        if (first < 0x20 || first == 0x7F || length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string formatted(const std::string& format, const std::tm& moment) {
    std::array<char, kTextBufferBytes> buffer; // NOLINT: only the bytes written are read
    const std::size_t length =
        strftime_l(buffer.data(), buffer.size(), format.c_str(), &moment, userLocale());
    return {buffer.data(), length};
}

} // namespace

std::string time() {
    return usesTwelveHourTime() ? "%-I:%M %p" : "%H:%M";
}

std::string date() {
    return putsMonthFirst() ? "%a %b %-d" : "%a " + dayOfMonth() + " %b";
}

std::string shortDefault() {
    return "%a " + time();
}

std::string longDefault() {
    return date() + ' ' + time();
}

std::string fullDate() {
    return putsMonthFirst() ? "%A, %B %-d, %Y" : "%A, " + dayOfMonth() + " %B %Y";
}

std::string fullTime() {
    return expanded("%X %Z");
}

std::string expanded(std::string_view format) {
    return expanded(format, 0);
}

bool showsSeconds(std::string_view format) {
    return expanded(bare(format)).find("%S") != std::string::npos;
}

std::string bare(std::string_view format) {
    std::string result;
    for (std::size_t i = 0; i < format.size(); ++i) {
        result += format[i];
        if (format[i] != '%')
            continue;
        // Skip flags, the width and the modifiers for alternative digits and eras.
        i = format.find_first_not_of("_-^#+0123456789EO", i + 1);
        if (i == std::string_view::npos)
            break;
        result += format[i] == 's' ? 'S' : format[i];
    }
    return result;
}

bool isUsable(std::string_view format) {
    if (format.empty() || format.size() > kMaximumFormatBytes || !isPlainText(format))
        return false;
    std::tm moment{};
    moment.tm_mday = 1;
    moment.tm_zone = "UTC";
    const std::string shown = text(std::string(format), moment);
    return shown.find_first_not_of(' ') != std::string::npos;
}

std::string text(std::string format, const std::tm& moment) {
    HalvexDateFormat::fixWeekNum(format, formatted("%V", moment));
    HalvexDateFormat::fixTimeZone(format, formatted("%Z", moment));
    return formatted(format, moment);
}

} // namespace extras::clock_format
