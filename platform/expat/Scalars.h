#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

/// Conversion between values and the text of their XML elements, independent of the locale. Parsing
/// ignores surrounding white space and returns std::nullopt for malformed and out-of-range text.
namespace platform::expat {

/// Parses a decimal or, after "0x", hexadecimal integer from -2^63 to 2^64 - 1, with optional sign.
std::optional<PropertyList> parseInteger(std::string_view text);
/// Parses a number in C syntax, including "inf" and "nan". Overflow and underflow are out of range.
std::optional<PropertyList> parseReal(std::string_view text);
/// Parses a date such as "2026-11-22T22:20:57Z" in the Gregorian calendar. Years have one to nine
/// digits and an optional "-"; the year 0 is 1 BC.
std::optional<PropertyList> parseDate(std::string_view text);
/// Parses padded Base64 text. White space is allowed anywhere.
std::optional<PropertyList> parseData(std::string_view text);

/// Returns the shortest text that parses to the same double.
std::string realText(double value);
/// Returns std::nullopt if the year has more than nine digits.
std::optional<std::string> dateText(PropertyList::Date date);
/// Returns Base64 text in lines of 76 characters. Each line begins with @p indent and ends with
/// a line feed.
std::string dataText(const PropertyList::Data& data, std::string_view indent);

} // namespace platform::expat
