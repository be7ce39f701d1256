#pragma once

#include "platform/base/NonCopyable.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace platform::qt {

/// A window that the window manager manages, with what the program has set on it. Texts are valid
/// UTF-8.
struct X11Client {
    xcb_window_t window = XCB_WINDOW_NONE;
    std::string name{};          ///< _NET_WM_NAME
    std::string plainName{};     ///< WM_NAME
    std::string instance{};      ///< the first part of WM_CLASS
    std::string windowClass{};   ///< the second part of WM_CLASS
    std::string applicationId{}; ///< a desktop entry without ".desktop"; set by some toolkits
    std::string host{};
    std::uint32_t process = 0; ///< on that host
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    bool hasOrdinaryType = true; ///< not a panel, a menu, the desktop or the like
    bool skipsTaskbar = false;
    bool isMinimised = false;
    bool needsAttention = false;
    std::uint64_t lastUse = 0; ///< increases with each activation; 0 if not seen yet
    std::uint32_t unread = 0;  ///< the properties that have to be read, one bit each
};

/// The windows of a screen's window manager (EWMH), read through a connection of its own, so that
/// neither its events nor its errors reach the toolkit. Survives window managers that exit or are
/// replaced, windows that vanish, and properties with any contents. Main thread.
///
/// Reading takes three round trips, however many windows have changed. Requests do not wait.
class X11Clients : NonCopyable {
  public:
    /// Returns null if the server cannot be reached. @p display is empty for DISPLAY. The windows
    /// of this process and those created through @p toolkit, unless null, are left out.
    static std::unique_ptr<X11Clients> connect(const std::string& display,
                                               xcb_connection_t* toolkit);
    ~X11Clients();

    /// Readable when something may have changed, or when the connection is broken.
    int fileDescriptor() const;
    bool isBroken() const;

    /// Reads what has changed since the last call.
    void update();
    /// Whether there were events since the last update that have already been read from the file
    /// descriptor. Any operation that waits for a reply may do that.
    bool hasEvents();
    /// Whether there is a window manager that follows EWMH.
    bool hasWindowManager() const { return manager_ != XCB_WINDOW_NONE; }

    /// Returns all windows, most recently used first, those not used yet topmost first. Empty
    /// without a window manager.
    std::vector<X11Client> clients() const;
    bool contains(std::uint64_t window) const {
        return clients_.contains(static_cast<xcb_window_t>(window));
    }
    xcb_window_t activeWindow() const { return active_; }
    /// Returns the windows whose icons have changed since the last call.
    std::vector<xcb_window_t> takeChangedIcons();
    /// Returns _NET_WM_ICON, at most 4 MiB of it.
    std::vector<std::uint32_t> icon(xcb_window_t window) const;

    void activate(xcb_window_t window);
    void minimise(xcb_window_t window);
    void restore(xcb_window_t window);
    void requestClose(xcb_window_t window);
    /// Returns the server's time, in one round trip; 0 if the connection breaks.
    std::uint32_t serverTime();
    /// Sends a startup notification message to all clients.
    void broadcastStartup(std::string_view message);

  private:
    X11Clients(xcb_connection_t* connection, int screen, xcb_connection_t* toolkit);

    void internAtoms();
    void handle(const xcb_generic_event_t& event);
    void propertyChanged(xcb_window_t window, xcb_atom_t property);
    void readEvents(xcb_generic_event_t* (*next)(xcb_connection_t*));
    void readRoot();
    xcb_window_t validManager(xcb_window_t candidate);
    void setStacking(const std::vector<std::uint32_t>& stacking);
    void readClients();
    bool readReplies(X11Client& client, const std::vector<xcb_get_property_cookie_t>& cookies);
    void setActive(xcb_window_t window);
    bool isOwn(const X11Client& client) const;
    void sendToRoot(xcb_window_t window, xcb_atom_t type, const std::vector<std::uint32_t>& data);

    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_window_t self_; ///< a window that is never shown
    std::uint32_t toolkitBase_ = 0, toolkitMask_ = 0;
    std::vector<xcb_atom_t> atoms_;
    xcb_window_t manager_ = XCB_WINDOW_NONE;
    xcb_window_t active_ = XCB_WINDOW_NONE;
    std::map<xcb_window_t, X11Client> clients_;
    std::vector<xcb_window_t> stacking_; ///< bottom first
    std::vector<xcb_window_t> changedIcons_;
    std::uint64_t uses_ = 0;
    std::uint32_t time_ = 0;
    bool isRootUnread_ = true;
    bool hasEvents_ = false;
};

} // namespace platform::qt
