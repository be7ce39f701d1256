#include "platform/base/Exception.h"

#include <utility>

namespace platform {

Exception::Exception(std::string name, std::string reason, std::optional<std::string> userInfo)
    : name_(std::move(name)), reason_(std::move(reason)), userInfo_(std::move(userInfo)) {}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
    return reason_.c_str();
}

} // namespace platform
