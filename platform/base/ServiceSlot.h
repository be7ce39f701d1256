#pragma once

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace platform {

/// Stores the installed service of one type. Used only by platform/<Service>.cpp.
template <class S>
class ServiceSlot {
  public:
    /// @p name appears in the message that is printed if the service is missing. @p makeDefault,
    /// unless null, returns the service to use until a host installs one.
    constexpr explicit ServiceSlot(const char* name, S& (*makeDefault)() = nullptr)
        : name_(name), default_(makeDefault) {}

    /// Returns the installed service or the default. Aborts with a message if there is neither.
    S& get() const {
        if (S* service = current_.load(std::memory_order_acquire))
            return *service;
        if (default_)
            return default_();
        std::fprintf(stderr, "no %s service is installed in this program\n", name_);
        std::abort();
    }

    S* exchange(S* service) { return current_.exchange(service, std::memory_order_acq_rel); }

  private:
    std::atomic<S*> current_{nullptr};
    const char* name_;
    S& (*default_)();
};

} // namespace platform
