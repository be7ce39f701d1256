#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/values/Event.h"

namespace platform {

/// The event that the program is handling. Main thread only.
class EventSource : NonCopyable {
  public:
    virtual ~EventSource();

    /// Returns the event being handled. Outside of event handling, returns an event with a click
    /// count of 0 and the most recent state of the modifier keys.
    virtual Event currentEvent() const = 0;
};

/// Returns the process's event source. The default source returns an event with a click count of 0
/// and no modifier flags.
EventSource& eventSource();
template <>
EventSource* exchangeService<EventSource>(EventSource* service);

} // namespace platform
