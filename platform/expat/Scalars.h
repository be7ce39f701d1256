#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

/// The text between the tags of a number, a date or bytes. White space around it is skipped; the
/// locale has no part in it. Reading gives nothing when the text is malformed or out of range.
namespace platform::expat {

/// Decimal, or hexadecimal after "0x", with or without a sign; -2^63 to 2^64 - 1.
std::optional<PropertyList> parseInteger(std::string_view text);
/// As C writes it, "inf" and "nan" included; what no double comes near is out of range.
std::optional<PropertyList> parseReal(std::string_view text);
/// "2026-11-22T22:20:57Z": a date of the calendar, years of one to nine digits, "-" before Christ
/// (the year 0 is 1 BC).
std::optional<PropertyList> parseDate(std::string_view text);
/// Base 64 with its padding, white space anywhere.
std::optional<PropertyList> parseData(std::string_view text);

/// The shortest text that reads as the same double.
std::string realText(double value);
/// Nothing when the year has more than nine digits.
std::optional<std::string> dateText(PropertyList::Date date);
/// In lines of 76 characters, each with @p indent before it and a line feed after it.
std::string dataText(const PropertyList::Data& data, std::string_view indent);

} // namespace platform::expat
