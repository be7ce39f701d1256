#pragma once

#include "platform/Bundle.h"
#include "platform/ProcessList.h"

#include <memory>
#include <optional>
#include <string>

/// Finds and opens the product's preference pane, and finds its background application, Halvex.app.
/// Safe to call from any thread.
class HalvexPrefsTools {
  public:
    HalvexPrefsTools() = delete;

    /// Returns the pane loaded in this process, else the one installed for all users, else the
    /// user's own. In both folders, "Halvex Pro.prefPane" is preferred to "HalvexPro.prefPane".
    /// Returns null if there is none.
    static std::shared_ptr<platform::Bundle> HalvexPrefsBundle();

    /// Returns the pane's path, or std::nullopt if there is no pane (logged).
    static std::optional<std::string> HalvexPrefsPath();

    /// Opens the pane with System Preferences and logs whether that succeeded. Returns the pane's
    /// path in both cases, or std::nullopt if there is no pane (logged).
    static std::optional<std::string> HalvexOpenPrefs();

    /// Selects the pane with this identifier in System Preferences. Returns immediately: runs
    /// openPrefsThread on a detached thread.
    static void openPrefsSelected(const std::string& paneIdentifier);
    /// Selects the pane with this identifier in System Preferences, which can take seconds. Logs a
    /// failure together with the script.
    static void openPrefsThread(const std::string& paneIdentifier);

    /// Returns the path of the background application, whether or not it exists. It is in the pane
    /// that HalvexMenuExtraTools::HalvexPrefsPlugins finds, which never is "HalvexPro.prefPane".
    /// Returns std::nullopt if there is no such pane (logged).
    static std::optional<std::string> getHalvexBGApplicationPath();

    /// Returns whether the background application is running. If so, stores its process in
    /// @p serialNumber, which may be null. Processes of the older generation do not count; each one
    /// found on the way is logged.
    static bool findHalvexBGProcess(platform::ProcessSerialNumber* serialNumber);
};
