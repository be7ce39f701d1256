#pragma once

#include "platform/base/NonCopyable.h"

#include <memory>
#include <string>

/// Messages by name, as controls send them to who asked for it. Main thread.
namespace platform {

/// The name of a message, "closeIt:"; an empty one is none.
using Selector = std::string;

/// What sends actions: a panel or a control.
class ActionSender : NonCopyable {
  public:
    virtual ~ActionSender();
};

/// What takes actions. Senders hold it weakly: one that is gone is not called.
class ActionTarget : NonCopyable {
  public:
    virtual ~ActionTarget();

    virtual bool respondsToSelector(const Selector& selector) const = 0;
    /// Called for a selector that it responds to.
    virtual void performSelector(const Selector& selector, ActionSender& sender) = 0;
};

/// Sends an action to a target that still exists and responds to it; otherwise does nothing.
void sendAction(const Selector& action, const std::weak_ptr<ActionTarget>& target,
                ActionSender& sender);

} // namespace platform
