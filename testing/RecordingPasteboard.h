#pragma once

#include "platform/Pasteboard.h"

#include <string>
#include <string_view>

namespace halvextest {

/// Keeps the text that was copied last.
class RecordingPasteboard final : public platform::Pasteboard {
  public:
    std::string text;

    void setString(std::string_view string) override { text = string; }

  private:
    platform::ScopedService<platform::Pasteboard> service_{*this};
};

} // namespace halvextest
