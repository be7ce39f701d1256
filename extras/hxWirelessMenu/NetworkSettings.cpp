#include "extras/hxWirelessMenu/NetworkSettings.h"

#include "platform/Applications.h"

#include <cstdlib>
#include <string_view>
#include <vector>

namespace extras {
namespace {

struct Settings {
    std::string_view desktop; ///< a name in XDG_CURRENT_DESKTOP; empty for any
    const char* entry;
};

// In the order in which they are tried.
constexpr Settings kSettings[] = {
    {"GNOME", "gnome-wifi-panel.desktop"},
    {"GNOME", "gnome-network-panel.desktop"},
    {"KDE", "kcm_networkmanagement.desktop"},
    {"X-Cinnamon", "cinnamon-network-panel.desktop"},
    {"X-Cinnamon", "cinnamon-settings-network.desktop"},
    {"Budgie", "budgie-network-panel.desktop"},
    {"Budgie", "budgie-wifi-panel.desktop"},
    {"Unity", "unity-network-panel.desktop"},
    {"Pantheon", "io.elementary.settings.desktop"},
    {"", "nm-connection-editor.desktop"},
};

/// @p desktops is a list separated by colons.
bool contains(std::string_view desktops, std::string_view name) {
    const std::string list = ':' + std::string(desktops) + ':';
    return list.find(':' + std::string(name) + ':') != std::string::npos;
}

} // namespace

std::optional<std::string> networkSettingsEntry() {
    const char* const value = std::getenv("XDG_CURRENT_DESKTOP");
    const std::string_view running = value ? value : "";
    std::vector<const char*> ofRunning, ofOthers;
    for (const auto& [desktop, entry] : kSettings)
        (desktop.empty() || contains(running, desktop) ? ofRunning : ofOthers).push_back(entry);
    for (const auto& entries : {ofRunning, ofOthers})
        for (const char* entry : entries)
            if (platform::applications().desktopEntry(entry))
                return entry;
    return std::nullopt;
}

} // namespace extras
