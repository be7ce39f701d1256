#pragma once

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace platform {

/// The place behind one service's accessor. Only platform/<Service>.cpp makes one.
template <class S>
class ServiceSlot {
  public:
    /// @p name is what a missing service is called in the message before the abort;
    /// @p makeDefault, when not null, gives the service that answers until a host installs one.
    constexpr explicit ServiceSlot(const char* name, S& (*makeDefault)() = nullptr)
        : name_(name), default_(makeDefault) {}

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
