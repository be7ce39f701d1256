#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A button on a notification.
struct UserNotificationAction {
    std::string identifier;
    std::string label; ///< user-visible
};

/// The identifier of the action that clicking the notification itself performs. Offered only if it
/// is among the actions; some desktops show its label.
inline constexpr const char* kDefaultAction = "default";

/// What has become of a notification.
enum class UserNotificationEvent {
    Shown,  ///< the desktop has accepted it
    Closed, ///< the user or the desktop has closed it, or it could not be shown
};

/// A message that the desktop shows to the user.
struct UserNotification {
    /// Names the notification, so that it can be replaced and withdrawn; empty if it never is.
    /// Different owners (see runtime/Guard.h) can use the same key.
    std::string key{};
    std::string title{}; ///< one line
    std::string body{};  ///< plain text; markup is shown literally
    std::string icon{};  ///< a name in the icon theme or an absolute path; empty for none
    std::vector<UserNotificationAction> actions{};
    /// The sound to play: a name of the freedesktop sound naming scheme, such as
    /// "alarm-clock-elapsed", or the absolute path of a file. Empty for no sound, std::nullopt for
    /// what the desktop plays.
    std::optional<std::string> sound{};
    bool staysVisible = false; ///< shown until the user closes it, if the desktop can do that
    /// The object that the handler belongs to, held weakly: the handler is not called after its
    /// destruction, or if this is null. It is kept alive while the handler runs.
    std::weak_ptr<const void> observer{};
    /// Called on the main thread with the identifier of the action that the user chose. Exceptions
    /// from it are logged with the owner's identifier and swallowed. Its code must stay loaded
    /// until removeExpired has been called.
    std::function<void(const std::string& action)> handler{};
    /// Like handler, but called for the events of the notification, never from within an operation.
    /// Closed is not reported for a notification that the owner replaces or withdraws.
    std::function<void(UserNotificationEvent event)> eventHandler{};
};

/// Shows notifications on the desktop. Main thread only; needs a running main loop.
class UserNotifications : NonCopyable {
  public:
    virtual ~UserNotifications();

    /// Shows a notification, in place of the one that the same owner has posted with the same key.
    /// Returns false if the desktop does not show notifications, which is logged once. Otherwise
    /// returns true before the notification is shown; if showing it fails later, the reason is
    /// logged. Desktops without buttons show it without its actions. The handler is called until
    /// the notification has been closed, replaced or withdrawn.
    virtual bool post(const UserNotification& notification) = 0;
    /// Removes the notification that the current owner has posted with @p key, if any.
    virtual void withdraw(std::string_view key) = 0;
    /// Withdraws the notifications whose observers have been destroyed, and destroys their
    /// handlers. Hosts call it before they unload code.
    virtual void removeExpired() = 0;
};

/// Returns the host's notifications. The default shows none.
UserNotifications& userNotifications();
template <>
UserNotifications* exchangeService<UserNotifications>(UserNotifications* service);

} // namespace platform
