#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <string_view>

namespace platform {

/// The clipboard. Main thread only.
class Pasteboard : NonCopyable {
  public:
    virtual ~Pasteboard();

    /// Replaces the contents with UTF-8 text.
    virtual void setString(std::string_view text) = 0;
};

/// Returns the host's clipboard. Aborts if the host has not installed one.
Pasteboard& generalPasteboard();
template <>
Pasteboard* exchangeService<Pasteboard>(Pasteboard* service);

} // namespace platform
