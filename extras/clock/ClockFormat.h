#pragma once

#include <ctime>
#include <locale.h>
#include <string>
#include <string_view>

/// Clock formats: strftime formats in the user's locale, except that "%W" is the ISO week ("01" to
/// "53") and that "%%" does not escape "%W" and "%Z". Thread-safe.
namespace extras::clock_format {

/// Returns the format for the time without seconds: "22:05" or "10:05 PM".
std::string time();
/// Returns the format for weekday, day and month: "Sun 22 Nov" or "Sun Nov 22".
std::string date();
/// Returns the format for weekday and time: "Sun 22:05" or "Sun 10:05 PM".
std::string shortDefault();
/// Returns the format for weekday, day and time: "Sun 22 Nov 22:05" or "Sun Nov 22 10:05 PM".
std::string longDefault();
/// Returns the format for the full date in words.
std::string fullDate();
/// Returns the format for the time with seconds and time zone.
std::string fullTime();

/// Returns @p format with composite conversions ("%T", "%R", "%r", "%X", "%c") replaced by the
/// conversions they stand for. "%%" stays unchanged.
std::string expanded(std::string_view format);

/// Returns @p format without flags, widths and modifiers, so that "%-S" becomes "%S". "%s", the
/// seconds since 1970, also becomes "%S". Use the result to find out which units a format shows,
/// not to format a time.
std::string bare(std::string_view format);

/// Returns whether a title in @p format changes every second.
bool showsSeconds(std::string_view format);

/// Returns whether a clock can show @p format: it must be UTF-8 without control characters, at most
/// 256 bytes long, and produce text that is not blank.
bool isUsable(std::string_view format);

/// Formats @p moment. Returns an empty string if the result exceeds 16383 bytes.
std::string text(std::string format, const std::tm& moment);

/// Returns the locale of the environment, or "C" if that locale is not installed. Valid as long as
/// the bundle's code is loaded.
locale_t userLocale();

} // namespace extras::clock_format
