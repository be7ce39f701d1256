#pragma once

#include <cstdint>
#include <string_view>
#include <sys/types.h>
#include <vector>
#include <xcb/xcb.h>

namespace platform::qt {

/// A client of the X11 window manager, using the EWMH conventions. Main thread.
class X11WindowManager {
  public:
    /// @p connection must outlive the object.
    explicit X11WindowManager(xcb_connection_t* connection);

    /// Returns the topmost window of a process, or XCB_WINDOW_NONE if it has none.
    xcb_window_t topmostWindow(pid_t process) const;
    /// Requests that a window be activated. Does not wait for a reply.
    void activate(xcb_window_t window) const;

  private:
    std::vector<std::uint32_t> property(xcb_window_t window, std::string_view name,
                                        xcb_atom_t type) const;

    xcb_connection_t* connection_;
    xcb_window_t root_;
};

} // namespace platform::qt
