#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/Event.h"

namespace platform::qt {

/// Makes an event the one that the program is handling, for the object's lifetime; see EventSource.
/// Scopes nest; the innermost one counts. Main thread only.
class HandledEvent : NonCopyable {
  public:
    explicit HandledEvent(const Event& event);
    ~HandledEvent();

    /// Returns the event being handled. Outside of every scope, returns an event with a click count
    /// of 0 and the most recent state of the modifier keys.
    static Event current();

  private:
    const Event event_;
    const HandledEvent* const outer_;
};

} // namespace platform::qt
