#pragma once

#include "extras/hxWirelessMenu/ConnectionAttempt.h"
#include "extras/hxWirelessMenu/MenuRows.h"
#include "extras/hxWirelessMenu/WirelessIcons.h"
#include "platform/Wireless.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace extras {

/// The menu of the wireless item: the connection of each adapter, the networks, and what can be
/// switched. The first adapter's entries are in the menu itself, those of the others in submenus.
///
/// Choosing a network connects to it; the desktop asks for the password. An enterprise network
/// that is not known opens the network settings instead, because it needs more than a password.
/// While the menu is open, networks keep their places and new ones are added below, so that none
/// moves under the pointer. Main thread only.
class NetworkMenu {
  public:
    explicit NetworkMenu(WirelessIcons& icons) : icons_(icons) {}

    const std::shared_ptr<platform::Menu>& menu() const { return menu_; }

    /// Searches for networks and fills the menu. @p target validates the entries.
    void open(std::weak_ptr<platform::MenuTarget> target);
    void close() { isOpen_ = false; }
    /// Follows a change of the status.
    void statusChanged();

  private:
    using Rows = std::vector<MenuRow>;

    void update();
    Rows rows();
    void addAdapter(Rows& rows, const platform::WirelessAdapter& adapter, bool isOnlyOne);
    void addConnection(Rows& rows, const platform::WirelessAdapter& adapter);
    void addNetworks(Rows& rows, const platform::WirelessAdapter& adapter);
    MenuRow networkRow(const platform::WirelessAdapter& adapter,
                       const platform::WirelessNetwork& network);
    void addOtherAdapters(Rows& rows, const platform::WirelessAdapter& shown);
    void addSubmenu(Rows& rows, const std::string& identifier, std::string title,
                    const Rows& content);
    void addSwitches(Rows& rows);
    void sortAsShown(const std::string& interface,
                     std::vector<platform::WirelessNetwork>& networks);
    void choose(const std::string& interface, const std::string& ssid);
    void disconnect(const std::string& interface);
    void openSettings() const;

    WirelessIcons& icons_;
    std::weak_ptr<platform::MenuTarget> target_;
    const std::shared_ptr<platform::Menu> menu_ = std::make_shared<platform::Menu>();
    std::map<std::string, std::shared_ptr<platform::Menu>> submenus_; // by the entry's identifier
    std::map<std::string, std::vector<std::string>> shown_; // ssids by interface, in their order
    std::optional<std::string> settings_;
    ConnectionAttempt attempt_;
    bool isOpen_ = false;
};

} // namespace extras
