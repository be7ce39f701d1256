#pragma once

#include <ctime>
#include <string>
#include <string_view>

/// Formats for clocks, as strftime knows them, in the language that the environment asks for; but
/// "%W" is the ISO week ("01" to "53"), and neither it nor "%Z" can be escaped by "%%".
/// Safe from any thread.
namespace clock_format {

/// Weekday and time: "Sun 22:05" or "Sun 10:05 PM".
std::string shortDefault();
/// Weekday, day and time: "Sun 22 Nov 22:05" or "Sun Nov 22 10:05 PM".
std::string longDefault();
/// The whole date in words, and the time with seconds and zone.
std::string fullDate();
std::string fullTime();

/// @p format with the conversions that stand for several others ("%T", "%R", "%r", "%X", "%c")
/// written out, so that what it shows can be seen in it. "%%" stays what it is.
std::string expanded(std::string_view format);

/// @p format with no more of each conversion than its letter, "%-S" as "%S", and the seconds since
/// 1970, "%s", as seconds, too: what it shows, but not how.
std::string bare(std::string_view format);

/// Whether a clock can show @p format: at most 256 bytes of UTF-8 without control characters that
/// give a text that is not blank.
bool isUsable(std::string_view format);

/// The moment as @p format shows it; empty when that is longer than 16383 bytes.
std::string text(std::string format, const std::tm& moment);

} // namespace clock_format
