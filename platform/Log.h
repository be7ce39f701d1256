#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace platform {

/// The destination of log lines and of the alert sound. Operations never throw, and block only
/// while the destination does. Thread-safe.
class Log : NonCopyable {
  public:
    virtual ~Log();

    /// Writes one line of UTF-8 text. @p line has no line feed at its end.
    virtual void write(std::string_view line) = 0;
    /// Plays the system's alert sound.
    virtual void beep() = 0;
};

/// Returns the process's log. The default writes to standard error, with the time and the program's
/// name, and rings the terminal's bell.
Log& systemLog();
template <>
Log* exchangeService<Log>(Log* service);

/// A value for a placeholder of formatLogLine. Null and std::nullopt are printed as "(null)".
/// Strings are referenced, not copied, so the argument must not outlive the full expression
/// that creates it.
class LogArgument {
  public:
    LogArgument(std::nullptr_t) {}
    LogArgument(const char* text) {
        if (text)
            value_ = std::string_view(text);
    }
    LogArgument(std::string_view text) : value_(text) {}
    LogArgument(const std::string& text) : value_(std::string_view(text)) {}
    LogArgument(const std::optional<std::string>& text) {
        if (text)
            value_ = std::string_view(*text);
    }
    LogArgument(std::signed_integral auto number) : value_(std::int64_t{number}) {}
    LogArgument(std::unsigned_integral auto number) : value_(std::uint64_t{number}) {}

    /// Returns the value as printed by "%@" and "%d".
    std::string text() const;
    /// Returns the value as printed by "%x". Signed numbers are converted to 32 bits.
    std::string hexadecimal() const;

  private:
    std::variant<std::monostate, std::string_view, std::int64_t, std::uint64_t> value_;
};

/// Replaces the placeholders "%@", "%d" and "%x" in @p format with the arguments in order. A
/// placeholder may have a width, padded with spaces or, after a "0", with zeros: "%016x". "%%"
/// becomes "%". Placeholders without an argument are left unchanged.
std::string formatLogLine(std::string_view format, std::initializer_list<LogArgument> arguments);

/// Like formatLogLine, but writes the line to systemLog(). Arguments may come from other programs,
/// so they cannot break the line or send commands to a terminal: control characters and bytes that
/// are not UTF-8 are written as "\n", "\r", "\t" or "\x1b", and an argument longer than 1 kB (1024
/// bytes) is cut and ends with "...". If memory runs out, writes @p format unchanged. Thread-safe.
void writeLogLine(std::string_view format, std::initializer_list<LogArgument> arguments);

/// Calls writeLogLine. Thread-safe.
template <class... Arguments>
void logLine(std::string_view format, const Arguments&... arguments) {
    writeLogLine(format, {LogArgument(arguments)...});
}

} // namespace platform
