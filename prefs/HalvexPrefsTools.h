#pragma once

#include "platform/Bundle.h"
#include "platform/ProcessList.h"

#include <memory>
#include <optional>
#include <string>

/// Finds and opens the product's preference pane, and finds its background application, Halvex.app.
/// Operations never throw: if memory runs out, they log this and find nothing. Safe to call from
/// any thread.
class HalvexPrefsTools {
  public:
    HalvexPrefsTools() = delete;

    /// Returns the pane loaded in this process, else the one installed for all users, else the
    /// user's own. In both folders, "Halvex Pro.prefPane" is preferred to "HalvexPro.prefPane".
    /// Returns null if no pane is found.
    static std::shared_ptr<platform::Bundle> HalvexPrefsBundle();

    /// Returns the pane's path, or std::nullopt if there is no pane (logged).
    static std::optional<std::string> HalvexPrefsPath();

    /// Opens the pane with System Preferences and logs whether that succeeded. Returns the pane's
    /// path in both cases, or std::nullopt if there is no pane (logged).
    static std::optional<std::string> HalvexOpenPrefs();

    /// Selects the pane with this identifier in System Preferences. Returns immediately: runs
    /// openPrefsThread on a detached thread.
    static void openPrefsSelected(const std::string& paneIdentifier);
    /// Selects the pane with this identifier in System Preferences, which can take seconds. On
    /// failure, logs the error and the script.
    static void openPrefsThread(const std::string& paneIdentifier);

    /// Returns the path of the background application, whether or not it exists. The application is
    /// in the folder returned by HalvexMenuExtraTools::HalvexPrefsPlugins, which, unlike
    /// HalvexPrefsBundle, does not search for "HalvexPro.prefPane". Returns std::nullopt if no pane
    /// is found (logged).
    static std::optional<std::string> getHalvexBGApplicationPath();

    /// Returns whether the background application is running. If so, stores its process serial
    /// number in @p serialNumber, unless that is null. Skips processes of the older generation,
    /// "Halvex 2", and logs those found before the application.
    static bool findHalvexBGProcess(platform::ProcessSerialNumber* serialNumber);
};
