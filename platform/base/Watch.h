#pragma once

#include "platform/base/NonCopyable.h"

namespace platform {

/// A registered handler. Destroying the object unregisters it; the handler is not called again.
/// Main thread only.
class Watch : NonCopyable {
  public:
    virtual ~Watch();
};

} // namespace platform
