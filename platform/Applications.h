#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"
#include "platform/values/Image.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// A window of a running application. Texts are UTF-8.
struct ApplicationWindow {
    std::uint64_t identifier = 0; ///< of this window, until it is closed
    std::string title{};          ///< may be empty
    bool isActive = false;        ///< this window, or a dialog that belongs to it, has the focus
    bool isMinimised = false;
    bool needsAttention = false; ///< the application asks the user to look at it

    bool operator==(const ApplicationWindow&) const = default;
};

/// A running application that has windows. Several processes count as one application if they
/// share a desktop entry or, without one, the application name that they set on their windows.
struct RunningApplication {
    /// The identifier of its desktop entry, if it has one. The same as long as it runs.
    std::string identifier{};
    std::string name{}; ///< user-visible, in the user's language if it has a desktop entry
    bool hasDesktopEntry = false;
    std::int64_t process = 0; ///< of its most recently used window; 0 if unknown or on another host
    bool isActive = false;    ///< one of its windows has the focus
    bool isHidden = false;    ///< all its windows are minimised
    std::vector<ApplicationWindow> windows{}; ///< most recently used first, never empty

    bool operator==(const RunningApplication&) const = default;
};

/// An installed application, as its desktop entry describes it. Texts are in the user's language.
struct DesktopEntry {
    std::string identifier{}; ///< such as "org.example.Editor.desktop"
    std::string name{};
    std::string genericName{}; ///< such as "Text Editor"; may be empty
    std::string comment{};     ///< one sentence for a tooltip; may be empty
    std::string icon{};        ///< a name in the icon theme or an absolute path; may be empty
    std::string path{};        ///< of the file
    bool isShown = true;       ///< false if menus should not offer it
};

/// The running applications that have windows, and the installed ones. Panels, docks and the
/// desktop's background do not count as windows, and neither do this program's own windows.
///
/// Operations that change something return whether the request was sent. They do not wait, and the
/// window manager may refuse. Main thread only; needs a running main loop.
class Applications : NonCopyable {
  public:
    virtual ~Applications();

    /// Returns the running applications, most recently used first. The order is known from the
    /// first observer on; before, it is that of the windows, topmost first. Empty if the desktop
    /// does not provide the list, which is logged once.
    virtual std::vector<RunningApplication> running() = 0;
    /// Returns whether the desktop provides the list. As of the last call of running(), or of an
    /// observer's handler, which is also called when this changes.
    virtual bool providesList() const = 0;
    /// Calls @p handler when the list is known, soon after this call, and then whenever the result
    /// of running() or an icon has changed, at most about 20 times a second. Exceptions from it are
    /// logged with the owner's identifier and swallowed. It may destroy its own watch. Window
    /// managers that start later, exit or are replaced are followed. Nothing is watched without
    /// observers.
    virtual std::unique_ptr<Watch> observe(std::function<void()> handler) = 0;

    /// Returns the icon of a running application or a desktop entry, in a square of @p size points,
    /// at 1 and 2 pixels per point. Loaded at the first call and cached. Null if it has none. An
    /// icon that cannot be read counts as none.
    virtual std::shared_ptr<Image> icon(const std::string& identifier, double size) = 0;
    /// Reads a desktop entry. A file in the user's folder replaces one of the system with the same
    /// identifier. Returns std::nullopt if it does not exist, is deleted or is invalid.
    virtual std::optional<DesktopEntry> desktopEntry(const std::string& identifier) = 0;

    /// Brings the most recently used window of a running application to the front. If all its
    /// windows are minimised, restores that one.
    virtual bool activate(const std::string& identifier) = 0;
    /// Brings a window to the front, and restores it if it is minimised.
    virtual bool activateWindow(std::uint64_t window) = 0;
    /// Minimises all windows of a running application.
    virtual bool hide(const std::string& identifier) = 0;
    /// Minimises the windows of all other applications.
    virtual bool hideOthers(const std::string& identifier) = 0;
    /// Restores the windows that hide or hideOthers has minimised; if there are none, all minimised
    /// windows of the application.
    virtual bool show(const std::string& identifier) = 0;
    /// Asks a running application to close all its windows. It may ask the user whether to save.
    virtual bool quit(const std::string& identifier) = 0;
    /// Starts the application of a desktop entry, or has a running instance open @p urls (paths or
    /// URLs). Passes an activation token, so that its window may take the focus. Returns false, and
    /// logs "cannot launch %@: %@", if the entry does not exist or its program cannot be started.
    virtual bool launch(const std::string& identifier,
                        const std::vector<std::string>& urls = {}) = 0;
};

/// Returns the host's applications. The default knows none.
Applications& applications();
template <>
Applications* exchangeService<Applications>(Applications* service);

} // namespace platform
