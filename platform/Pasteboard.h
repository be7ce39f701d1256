#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <string_view>

namespace platform {

/// What was copied last. Main thread.
class Pasteboard : NonCopyable {
  public:
    virtual ~Pasteboard();

    /// Puts UTF-8 text in the place of what was there.
    virtual void setString(std::string_view text) = 0;
};

Pasteboard& generalPasteboard();
template <>
Pasteboard* exchangeService<Pasteboard>(Pasteboard* service);

} // namespace platform
