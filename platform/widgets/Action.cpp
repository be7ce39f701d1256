#include "platform/widgets/Action.h"

namespace platform {

ActionSender::~ActionSender() = default;
ActionTarget::~ActionTarget() = default;

void sendAction(const Selector& action, const std::weak_ptr<ActionTarget>& target,
                ActionSender& sender) {
    const auto receiver = target.lock();
    if (receiver && !action.empty() && receiver->respondsToSelector(action))
        receiver->performSelector(action, sender);
}

} // namespace platform
