#pragma once

#include "platform/base/NonCopyable.h"

namespace platform {

// Unless its header says otherwise, an operation of a service throws nothing but std::bad_alloc.
// The services in platform/posix and platform/expat do not throw: if memory runs out, they log this
// and report failure through their results.

/// Replaces the process's service of type S; null restores the default. Returns the service that
/// was installed before, or null. Specialized in the source file of each service, so that a loaded
/// bundle shares the services of its host. The caller keeps ownership. Not thread-safe: call it
/// before other threads use the service.
template <class S>
S* exchangeService(S* service);

/// Installs a service and restores the previous one at the end of the scope.
template <class S>
class ScopedService : NonCopyable {
  public:
    explicit ScopedService(S& service) : previous_(exchangeService<S>(&service)) {}
    ~ScopedService() { exchangeService<S>(previous_); }

  private:
    S* previous_;
};

} // namespace platform
