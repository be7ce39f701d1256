#pragma once

namespace platform {

/// Puts @p service in the place of the process's service of that kind and gives the one that
/// answered before (null when nobody had been put there). Each service's source file defines it
/// for its own class; a loaded bundle therefore sees the same service as its host.
/// The caller keeps ownership. Thread: before other threads use the service.
template <class S>
S* exchangeService(S* service);

/// Puts a service in place for a scope, and the former one back at its end.
template <class S>
class ScopedService {
  public:
    explicit ScopedService(S& service) : previous_(exchangeService<S>(&service)) {}
    ~ScopedService() { exchangeService<S>(previous_); }
    ScopedService(const ScopedService&) = delete;
    ScopedService& operator=(const ScopedService&) = delete;

  private:
    S* previous_;
};

} // namespace platform
