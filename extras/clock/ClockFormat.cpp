#include "extras/clock/ClockFormat.h"

#include "platform/base/NonCopyable.h"
#include "ui/NSMutableString-DateFormat.h"

#include <algorithm>
#include <array>
#include <langinfo.h>
#include <locale.h>
#include <utility>

namespace clock_format {
namespace {

constexpr std::size_t kMaximumFormat = 256;
constexpr std::size_t kMaximumText = 16384;

/// The language of the environment; one that is not installed gives the plain one. Freed when the
/// bundle's code is unloaded.
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

locale_t userLocale() {
    static const UserLocale locale;
    return locale.get();
}

std::string_view fromLocale(nl_item item) {
    return nl_langinfo_l(item, userLocale());
}

bool hasTwelveHours() {
    const std::string_view time = fromLocale(T_FMT);
    return std::any_of(time.begin(), time.end(),
                       [](char c) { return c == 'r' || c == 'I' || c == 'l' || c == 'p'; });
}

bool hasMonthFirst() {
    const std::string_view date = fromLocale(D_FMT);
    return date.find("%m") < date.find("%d");
}

std::string time() {
    return hasTwelveHours() ? "%-I:%M %p" : "%H:%M";
}

std::string expanded(std::string_view format, int depth) {
    // Some locales define one of these by another; no chain is longer than two.
    constexpr int kDeepest = 3;
    const std::array<std::pair<char, std::string_view>, 5> table{{
        {'T', "%H:%M:%S"},
        {'R', "%H:%M"},
        {'r', fromLocale(T_FMT_AMPM)},
        {'X', fromLocale(T_FMT)},
        {'c', fromLocale(D_T_FMT)},
    }};
    std::string result;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%' || i + 1 == format.size()) {
            result += format[i];
            continue;
        }
        const char conversion = format[++i];
        const auto* entry = std::find_if(table.begin(), table.end(), [&](const auto& candidate) {
            return candidate.first == conversion;
        });
        if (entry != table.end() && !entry->second.empty() && depth < kDeepest)
            result += expanded(entry->second, depth + 1);
        else
            result.append({'%', conversion});
    }
    return result;
}

/// Whether bytes are well-formed UTF-8 without control characters.
bool isPlainText(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        if (lead < 0x20 || lead == 0x7F || (lead >= 0x80 && lead < 0xC2) || lead > 0xF4)
            return false;
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (length > bytes.size() - i)
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(bytes[i + k]) & 0xC0) != 0x80)
                return false;
        }
        i += length;
    }
    return true;
}

/// What strftime makes of @p format.
std::string conversion(const std::string& format, const std::tm& moment) {
    std::array<char, kMaximumText> buffer; // NOLINT: what is read of it was written
    const std::size_t length =
        strftime_l(buffer.data(), buffer.size(), format.c_str(), &moment, userLocale());
    return {buffer.data(), length};
}

} // namespace

std::string shortDefault() {
    return "%a " + time();
}

std::string longDefault() {
    return (hasMonthFirst() ? "%a %b %-d " : "%a %-d %b ") + time();
}

std::string fullDate() {
    return hasMonthFirst() ? "%A, %B %-d, %Y" : "%A, %-d %B %Y";
}

std::string fullTime() {
    return expanded("%X %Z");
}

std::string expanded(std::string_view format) {
    return expanded(format, 0);
}

std::string bare(std::string_view format) {
    std::string result;
    for (std::size_t i = 0; i < format.size(); ++i) {
        result += format[i];
        if (format[i] != '%')
            continue;
        // Flags, a width, and the locale's other digits or era.
        i = format.find_first_not_of("_-^#+0123456789EO", i + 1);
        if (i == std::string_view::npos)
            break;
        result += format[i] == 's' ? 'S' : format[i];
    }
    return result;
}

bool isUsable(std::string_view format) {
    if (format.empty() || format.size() > kMaximumFormat || !isPlainText(format))
        return false;
    std::tm moment{};
    moment.tm_mday = 1;
    moment.tm_zone = "UTC";
    const std::string shown = text(std::string(format), moment);
    return shown.find_first_not_of(' ') != std::string::npos;
}

std::string text(std::string format, const std::tm& moment) {
    HalvexDateFormat::fixWeekNum(format, conversion("%V", moment));
    HalvexDateFormat::fixTimeZone(format, conversion("%Z", moment));
    return conversion(format, moment);
}

} // namespace clock_format
