#pragma once

#include "platform/MenuExtraHost.h"

namespace halvextest {

/// A bar with a thickness of 22 points that counts the calls of its items.
class RecordingHost final : public platform::MenuExtraHost {
  public:
    int redisplays = 0;
    int lengthChanges = 0;
    int menuToggles = 0;

    double statusBarThickness() const override { return 22; }
    void viewNeedsDisplay(platform::MenuExtraView&) override { ++redisplays; }
    void lengthChanged(platform::MenuExtra&) override { ++lengthChanges; }
    void toggleMenu(platform::MenuExtra&) override { ++menuToggles; }

  private:
    platform::ScopedService<platform::MenuExtraHost> service_{*this};
};

} // namespace halvextest
