#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <string>

namespace platform {

/// The result of a request to the bar. The last three have the platform's values.
enum class MenuExtraStatus : std::int32_t {
    NoError = 0,
    NotLoaded = -1,     ///< no loaded item has this identifier or reference
    Refused = -2,       ///< the bundle is not admitted; the bar logs the reason
    FileNotFound = -43, ///< fnfErr
    BadParameter = -50, ///< paramErr
    OutOfMemory = -108, ///< memFullErr
};

/// Identifies a loaded item. Never 0 for an item.
using MenuExtraReference = std::uint32_t;

/// The menu bar as seen by other programs. Each request blocks for up to 5 seconds until the
/// bar replies, and returns a MenuExtraStatus, or another non-zero number if no bar
/// replies. Thread-safe.
class MenuExtraServer : NonCopyable {
  public:
    virtual ~MenuExtraServer();

    /// Sets @p reference to that of the loaded item with this identifier.
    virtual std::int32_t getMenuExtra(const std::string& identifier,
                                      MenuExtraReference& reference) = 0;
    /// Requests that the bar load the bundle at a file URL. Returns before the bundle is loaded.
    /// Items are ordered by @p position, rightmost first. The other parameters are ignored.
    virtual std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                      std::int32_t, std::int32_t, std::int32_t) = 0;
    /// Removes an item from the bar. @p flags is ignored.
    virtual std::int32_t removeMenuExtra(MenuExtraReference reference, std::int32_t flags) = 0;
};

/// Returns the connection to the menu bar. Aborts if the host has not installed one.
MenuExtraServer& menuExtraServer();
template <>
MenuExtraServer* exchangeService<MenuExtraServer>(MenuExtraServer* service);

} // namespace platform

// The operations of menuExtraServer() under their platform names.

/// Sets @p reference, unless null, to the item's reference, or to 0 if the item is not loaded.
std::int32_t CoreMenuExtraGetMenuExtra(const std::string& identifier,
                                       platform::MenuExtraReference* reference);
std::int32_t CoreMenuExtraAddMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                       std::int32_t, std::int32_t, std::int32_t);
std::int32_t CoreMenuExtraRemoveMenuExtra(platform::MenuExtraReference reference,
                                          std::int32_t flags);
