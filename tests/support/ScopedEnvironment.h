#pragma once

#include "platform/base/NonCopyable.h"

#include <cstdlib>
#include <optional>
#include <string>

namespace test {

/// Sets an environment variable, or unsets it, and restores it when the object is destroyed.
class ScopedEnvironment : platform::NonCopyable {
  public:
    ScopedEnvironment(std::string name, const std::optional<std::string>& value)
        : name_(std::move(name)) {
        if (const char* previous = std::getenv(name_.c_str()))
            previous_ = previous;
        set(value);
    }
    ~ScopedEnvironment() { set(previous_); }

  private:
    void set(const std::optional<std::string>& value) const {
        if (value)
            setenv(name_.c_str(), value->c_str(), 1);
        else
            unsetenv(name_.c_str());
    }

    std::string name_;
    std::optional<std::string> previous_;
};

} // namespace test
