#include "platform/LoginSession.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

class NoLoginSession final : public LoginSession {
  public:
    bool isLocked() const override { return false; }
    bool isActive() const override { return true; }
    std::unique_ptr<Watch> observe(std::function<void(LoginSessionEvent)>) override {
        return std::make_unique<Watch>();
    }
};

LoginSession& noLoginSession() {
    static NoLoginSession service;
    return service;
}

constinit ServiceSlot<LoginSession> slot{"LoginSession", noLoginSession};

} // namespace

LoginSession::~LoginSession() = default;

LoginSession& loginSession() {
    return slot.get();
}

template <>
LoginSession* exchangeService<LoginSession>(LoginSession* service) {
    return slot.exchange(service);
}

} // namespace platform
