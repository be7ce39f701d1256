#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <string>

namespace platform {

/// What the bar answers to requests about items; the numbers are the platform's where it has one.
enum class MenuExtraStatus : std::int32_t {
    NoError = 0,
    NotLoaded = -1,     ///< no item of that identifier or reference
    Refused = -2,       ///< the bundle did not pass the checks; the bar's log says which
    FileNotFound = -43, ///< fnfErr
    BadParameter = -50, ///< paramErr
};

/// A loaded item as the bar numbers it; 0 is none.
using MenuExtraReference = std::uint32_t;

/// The bar, as other programs ask it. Each request is answered within a bounded time; the status is
/// MenuExtraStatus's or, when no bar answers, any other number that is not 0. Any thread that may
/// block.
class MenuExtraServer : NonCopyable {
  public:
    virtual ~MenuExtraServer();

    /// The reference of the item with this identifier.
    virtual std::int32_t getMenuExtra(const std::string& identifier,
                                      MenuExtraReference& reference) = 0;
    /// Asks for the bundle at a file URL to be loaded, which follows later. @p position orders the
    /// items from the right; the system has given the other numbers no meaning.
    virtual std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                      std::int32_t, std::int32_t, std::int32_t) = 0;
    /// The system has given @p flags no meaning.
    virtual std::int32_t removeMenuExtra(MenuExtraReference reference, std::int32_t flags) = 0;
};

MenuExtraServer& menuExtraServer();
template <>
MenuExtraServer* exchangeService<MenuExtraServer>(MenuExtraServer* service);

} // namespace platform

// The server's three operations under the names that the system gives them. Each may block for some
// seconds.

/// Status 0 and a reference that is not 0 when the item is loaded, else a reference of 0. @p
/// reference may be null.
std::int32_t CoreMenuExtraGetMenuExtra(const std::string& identifier,
                                       platform::MenuExtraReference* reference);
std::int32_t CoreMenuExtraAddMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                       std::int32_t, std::int32_t, std::int32_t);
std::int32_t CoreMenuExtraRemoveMenuExtra(platform::MenuExtraReference reference,
                                          std::int32_t flags);
