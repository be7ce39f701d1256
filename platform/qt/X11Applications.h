#pragma once

#include "platform/Applications.h"
#include "platform/qt/DesktopEntries.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

class QTimer;

namespace platform::qt {

class X11Clients;
struct X11Client;

/// The applications on an X11 screen, whose window manager follows EWMH, and their desktop entries.
/// Connects to the X server at the first use or 50 ms after the first observer registers.
/// Disconnects when the last observer has been destroyed or, without observers, when control
/// returns to the main loop. Changes are collected for 50 ms.
///
/// If there is no list, it is empty, and one of these lines is logged, each once:
///   "applications are not listed: this program is not on an X11 display",
///   "applications are not listed: there is no window manager that follows EWMH".
class X11Applications final : public Applications {
  public:
    /// @p display is empty for the display of the program's windows.
    explicit X11Applications(std::string display = {});
    ~X11Applications() override;

    std::vector<RunningApplication> running() override;
    bool providesList() const override { return providesList_; }
    std::unique_ptr<Watch> observe(std::function<void()> handler) override;
    std::shared_ptr<Image> icon(const std::string& identifier, double size) override;
    std::optional<DesktopEntry> desktopEntry(const std::string& identifier) override;
    bool activate(const std::string& identifier) override;
    bool activateWindow(std::uint64_t window) override;
    bool hide(const std::string& identifier) override;
    bool hideOthers(const std::string& identifier) override;
    bool show(const std::string& identifier) override;
    bool quit(const std::string& identifier) override;
    bool launch(const std::string& identifier, const std::vector<std::string>& urls) override;

  private:
    class Session;
    class Observers;

    /// What the windows of an application have in common.
    struct Identity {
        std::string identifier;
        std::string name; ///< empty: the title of the window
        bool hasDesktopEntry = false;
    };
    /// The properties that determine the identity. The last one is the window if the others say
    /// nothing.
    using IdentityKey =
        std::tuple<std::string, std::string, std::string, std::int64_t, std::uint32_t>;
    using Identities = std::map<IdentityKey, Identity>;

    X11Clients* connect();
    void update();
    void collect();
    void report();
    void settle();
    void startTimer(int milliseconds);

    std::vector<RunningApplication> makeList(const X11Clients& clients);
    const Identity& identityOf(const X11Client& client, std::int64_t process,
                               Identities& current) const;
    Identity identify(const X11Client& client, std::int64_t process) const;
    const RunningApplication* find(const std::string& identifier);
    std::shared_ptr<Image> loadIcon(const std::string& identifier, double size);
    void forgetChangedIcons(const std::vector<std::uint32_t>& windows);
    void minimise(const RunningApplication& application);
    std::string startupToken(const DesktopEntryFile& file);
    void logOnce(const char* reason);

    const std::string display_;
    mutable DesktopEntries entries_;
    std::unique_ptr<Session> session_; ///< null unless in use
    std::unique_ptr<QTimer> timer_;    ///< null until needed; runs while changes are collected
    std::shared_ptr<Observers> observers_;
    std::vector<RunningApplication> list_;
    Identities identities_; ///< of the windows in the list
    std::map<std::pair<std::string, double>, std::shared_ptr<Image>> icons_;
    std::set<std::uint64_t> minimised_; ///< windows, by hide and hideOthers
    std::set<std::string> logged_;
    bool providesList_ = false;
    bool hasChanged_ = false; ///< since the last report
    int launches_ = 0;
};

} // namespace platform::qt
