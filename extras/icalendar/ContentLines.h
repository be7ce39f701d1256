#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The syntax of iCalendar (RFC 5545).
namespace extras::icalendar {

/// The lines of an iCalendar file: splits it at line feeds with or without a carriage return, and
/// joins a line with those after it that begin with a space or a tab. Skips empty lines. The text
/// must outlive this object.
class ContentLines {
  public:
    explicit ContentLines(std::string_view text) : rest_(text) {}

    /// Returns the next line, or std::nullopt at the end. It is valid until the next call.
    std::optional<std::string_view> next();
    /// Returns the number that the line returned last has in the file, from 1.
    std::size_t number() const { return number_; }

  private:
    std::string_view takeLine();
    bool isContinued() const;

    std::string_view rest_;
    std::string joined_;
    std::size_t number_ = 0;
    std::size_t taken_ = 0;
};

/// A line such as "DTSTART;TZID=Europe/Berlin:20261123T090000". Refers to the line's text.
struct Property {
    std::string_view name;       ///< "DTSTART"
    std::string_view parameters; ///< ";TZID=Europe/Berlin"
    std::string_view value;      ///< "20261123T090000"

    /// Returns the first value of a parameter without quotation marks, or an empty text.
    std::string_view parameter(std::string_view parameterName) const;
};

/// Returns std::nullopt if @p line has no name or no value.
std::optional<Property> parseProperty(std::string_view line);

/// Returns whether two texts are the same, except for the case of ASCII letters.
bool isSame(std::string_view left, std::string_view right);

/// Removes and returns the part of @p list up to the first @p separator, or all of it.
std::string_view takePart(std::string_view& list, char separator);

/// Returns a text value in the form to show: on one line, without escapes, surrounding spaces and
/// control characters. Malformed UTF-8 is replaced with U+FFFD, and a text of more than 200 bytes
/// is cut and ends with "…".
std::string textValue(std::string_view value);

} // namespace extras::icalendar
