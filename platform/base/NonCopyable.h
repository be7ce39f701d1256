#pragma once

namespace platform {

/// Base of classes that can be neither copied nor moved. Inherit privately.
class NonCopyable {
  public:
    NonCopyable(const NonCopyable&) = delete;
    NonCopyable& operator=(const NonCopyable&) = delete;

  protected:
    NonCopyable() = default;
    ~NonCopyable() = default;
};

} // namespace platform
