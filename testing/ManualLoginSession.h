#pragma once

#include "platform/LoginSession.h"
#include "platform/runtime/HandlerList.h"

#include <functional>
#include <memory>
#include <utility>

namespace halvextest {

/// A login session that changes only in report.
class ManualLoginSession final : public platform::LoginSession {
  public:
    /// Changes the state accordingly and notifies the observers.
    void report(platform::LoginSessionEvent event) {
        using Event = platform::LoginSessionEvent;
        if (event == Event::Locked || event == Event::Unlocked)
            isLocked_ = event == Event::Locked;
        if (event == Event::Activated || event == Event::Deactivated)
            isActive_ = event == Event::Activated;
        handlers_.call(event);
    }
    bool isObserved() const { return !handlers_.isEmpty(); }

    bool isLocked() const override { return isLocked_; }
    bool isActive() const override { return isActive_; }
    std::unique_ptr<platform::Watch>
    observe(std::function<void(platform::LoginSessionEvent)> handler) override {
        return handlers_.add(std::move(handler));
    }

  private:
    bool isLocked_ = false;
    bool isActive_ = true;
    platform::HandlerList<platform::LoginSessionEvent> handlers_;
    platform::ScopedService<platform::LoginSession> service_{*this};
};

} // namespace halvextest
