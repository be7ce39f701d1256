#pragma once

#include "platform/Pasteboard.h"

namespace platform::qt {

/// The desktop's clipboard. Main thread.
class QtPasteboard final : public Pasteboard {
  public:
    void setString(std::string_view text) override;
};

} // namespace platform::qt
