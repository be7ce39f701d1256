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

/// Where log lines and the alert sound go. Neither operation throws or blocks for long.
/// Safe from any thread.
class Log : NonCopyable {
  public:
    virtual ~Log();

    /// Writes one line, UTF-8, without a line feed of its own at the end.
    virtual void write(std::string_view line) = 0;
    /// Sounds the system's alert.
    virtual void beep() = 0;
};

/// The process's log. Until a host installs another one: standard error, with the time and the
/// program's name, and the terminal's bell.
Log& systemLog();
template <>
Log* exchangeService<Log>(Log* service);

/// One value for a placeholder. A missing string or a null pointer prints as "(null)".
/// Strings are referred to, not copied: the argument lives as long as the call it is written in.
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

    /// The value as "%@" or "%d" print it.
    std::string text() const;
    /// The value as "%x" prints it: a signed number as the 32-bit pattern that it has.
    std::string hexadecimal() const;

  private:
    std::variant<std::monostate, std::string_view, std::int64_t, std::uint64_t> value_;
};

/// Fills the placeholders "%@", "%d", "%x" (with an optional "0" and a width, as in "%016x") of
/// @p format in order; "%%" stands for one "%". A placeholder without an argument stays as it is.
std::string formatLogLine(std::string_view format, std::initializer_list<LogArgument> arguments);

/// Writes one line to the system log.
template <class... Arguments>
void logLine(std::string_view format, const Arguments&... arguments) {
    systemLog().write(formatLogLine(format, {LogArgument(arguments)...}));
}

} // namespace platform
