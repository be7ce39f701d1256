#pragma once

#include <string>
#include <string_view>

/// Fills placeholders of a date format with what the caller has worked out itself. Each operation
/// changes @p format in place and gives it back. A placeholder is these very two bytes wherever
/// they stand: "%%W" becomes "%" and the week, and "%w" stays.
///
/// The leftmost placeholder is replaced until there is none, those included that a value forms with
/// what stands beside it. A value for which that would never end, above all one that holds its own
/// placeholder, is refused: the format stays as it is, and "value \"%@\" would replace %@ without
/// end" is logged. Refused as well is a value that begins with the placeholder's letter and ends
/// with "%", once replacements have brought in more than 16 MiB. The time is linear in the length
/// of the format and of all that is brought in.
///
/// Safe from any thread, on a format that no other thread touches.
namespace HalvexDateFormat {

/// Replaces "%W" by @p week, the number of the week.
std::string& fixWeekNum(std::string& format, std::string_view week);

/// Replaces "%Z" by @p tzAbr, the abbreviation of the time zone.
std::string& fixTimeZone(std::string& format, std::string_view tzAbr);

} // namespace HalvexDateFormat
