#pragma once

#include <string>
#include <string_view>

/// Fills in those placeholders of a date format whose values the caller computes. Each operation
/// changes @p format in place and returns it. Placeholders are matched literally and cannot be
/// escaped: "%%W" becomes "%" followed by the week, and "%w" is left unchanged.
///
/// Replaces the leftmost placeholder until none is left, including placeholders formed by a value
/// and the text next to it. A value for which this would never end, such as one that contains its
/// own placeholder, is refused: @p format stays unchanged, and "value \"%@\" would replace %@
/// without end" is logged. A value that begins with the placeholder's letter and ends with "%" is
/// also refused if more than 16 MiB of replacements have been inserted. Runs in time linear in the
/// length of the format and of the replacements.
///
/// If memory runs out, this is logged and @p format stays unchanged. Thread-safe for different
/// formats.
namespace HalvexDateFormat {

/// Replaces "%W" with @p week, the number of the week.
std::string& fixWeekNum(std::string& format, std::string_view week);

/// Replaces "%Z" with @p tzAbr, the abbreviation of the time zone.
std::string& fixTimeZone(std::string& format, std::string_view tzAbr);

} // namespace HalvexDateFormat
