#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"
#include "platform/values/Color.h"

#include <functional>
#include <memory>
#include <optional>

namespace platform {

/// How the program looks, for items that choose their own colours. Text and template images have
/// the right colour without it. Main thread only.
class Appearance : NonCopyable {
  public:
    virtual ~Appearance();

    /// Returns whether the background is dark.
    virtual bool isDark() const = 0;
    /// Returns the colour that the user has chosen for highlights, or std::nullopt if none is
    /// chosen or the desktop has not reported it yet. The first call requests it; onChange reports
    /// the result.
    virtual std::optional<Color> accentColor() = 0;
    /// Returns whether the user prefers higher contrast. False if the desktop does not know, or, as
    /// for accentColor, has not reported it yet.
    virtual bool prefersHighContrast() = 0;

    /// Calls @p handler from the main loop after any of the above has changed. Exceptions from it
    /// are logged with the owner's identifier and swallowed. It may destroy its own watch. Never
    /// returns null.
    virtual std::unique_ptr<Watch> onChange(std::function<void()> handler) = 0;
};

/// Returns the host's appearance. The default is light and never changes.
Appearance& appearance();
template <>
Appearance* exchangeService<Appearance>(Appearance* service);

} // namespace platform
