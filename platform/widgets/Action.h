#pragma once

#include "platform/base/NonCopyable.h"

#include <memory>
#include <string>

/// Messages that controls send to their targets. Main thread only.
namespace platform {

/// The name of a message, such as "closeIt:". Empty for no message.
using Selector = std::string;

/// A sender of actions: a panel or a control.
class ActionSender : NonCopyable {
  public:
    virtual ~ActionSender();
};

/// A receiver of actions. Senders hold it weakly and do not call it after its destruction.
class ActionTarget : NonCopyable {
  public:
    virtual ~ActionTarget();

    virtual bool respondsToSelector(const Selector& selector) const = 0;
    /// Performs an action. Called only for selectors that the target responds to.
    virtual void performSelector(const Selector& selector, ActionSender& sender) = 0;
};

/// Sends an action to @p target. Does nothing if the target has been destroyed or does not respond
/// to @p action.
void sendAction(const Selector& action, const std::weak_ptr<ActionTarget>& target,
                ActionSender& sender);

} // namespace platform
