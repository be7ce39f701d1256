#pragma once

#include "platform/base/NonCopyable.h"

namespace platform {

/// Puts @p service in the place of the process's service of that kind and gives the one that
/// answered before (null when nobody had been put there). Each service's source file defines it
/// for its own class; a loaded bundle therefore sees the same service as its host.
/// The caller keeps ownership. Thread: before other threads use the service.
template <class S>
S* exchangeService(S* service);

/// Puts a service in place for a scope, and the former one back at its end.
template <class S>
class ScopedService : NonCopyable {
  public:
    explicit ScopedService(S& service) : previous_(exchangeService<S>(&service)) {}
    ~ScopedService() { exchangeService<S>(previous_); }

  private:
    S* previous_;
};

} // namespace platform
