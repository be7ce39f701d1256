#pragma once

#include <exception>
#include <optional>
#include <string>

namespace platform {

/// The exception thrown by platform operations: a name that callers can compare, a user-visible
/// reason, and optional further information.
class Exception : public std::exception {
  public:
    Exception(std::string name, std::string reason, std::optional<std::string> userInfo = {});
    ~Exception() override;

    const std::string& name() const { return name_; }
    const std::string& reason() const { return reason_; }
    const std::optional<std::string>& userInfo() const { return userInfo_; }
    /// Returns reason().
    const char* what() const noexcept override;

  private:
    std::string name_;
    std::string reason_;
    std::optional<std::string> userInfo_;
};

/// The name of an exception about an invalid argument. The value is the platform's own.
inline constexpr const char* kInvalidArgumentException = "NSInvalidArgumentException";

} // namespace platform
