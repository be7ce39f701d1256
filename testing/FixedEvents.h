#pragma once

#include "platform/EventSource.h"

namespace halvextest {

/// Always returns the event that the test has set.
class FixedEvents final : public platform::EventSource {
  public:
    platform::Event event;

    platform::Event currentEvent() const override { return event; }

  private:
    platform::ScopedService<platform::EventSource> service_{*this};
};

} // namespace halvextest
