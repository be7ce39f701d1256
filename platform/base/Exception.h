#pragma once

#include <exception>
#include <optional>
#include <string>

namespace platform {

/// The exception that the platform's own operations raise: a name that code can compare, a reason
/// for people, and whatever else the raiser wants to say.
class Exception : public std::exception {
  public:
    Exception(std::string name, std::string reason, std::optional<std::string> userInfo = {});
    ~Exception() override;

    const std::string& name() const { return name_; }
    const std::string& reason() const { return reason_; }
    const std::optional<std::string>& userInfo() const { return userInfo_; }
    /// The reason.
    const char* what() const noexcept override;

  private:
    std::string name_;
    std::string reason_;
    std::optional<std::string> userInfo_;
};

/// The name of an exception about an argument that the operation cannot take.
inline constexpr const char* kInvalidArgumentException = "NSInvalidArgumentException";

} // namespace platform
