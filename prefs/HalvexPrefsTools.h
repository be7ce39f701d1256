#pragma once

#include "platform/Bundle.h"
#include "platform/ProcessList.h"

#include <memory>
#include <optional>
#include <string>

/// Finds and opens the product's preference pane, and finds its background application, Halvex.app.
/// Any thread.
class HalvexPrefsTools {
  public:
    HalvexPrefsTools() = delete;

    /// The pane: the one whose code this process has loaded, else the one for all users, else the
    /// user's own; in each of the two folders "Halvex Pro.prefPane" comes before
    /// "HalvexPro.prefPane". Null when there is none.
    static std::shared_ptr<platform::Bundle> HalvexPrefsBundle();

    /// The pane's path; nothing, after a log line, when there is no pane.
    static std::optional<std::string> HalvexPrefsPath();

    /// Has System Preferences open the pane and gives the pane's path, also when that failed; a log
    /// line says which. Nothing, after a log line, when there is no pane.
    static std::optional<std::string> HalvexOpenPrefs();

    /// Has System Preferences select the pane with this identifier, from a thread of its own.
    static void openPrefsSelected(const std::string& paneIdentifier);
    /// What that thread does, which may take seconds. Failures are logged with the script.
    static void openPrefsThread(const std::string& paneIdentifier);

    /// Where the background application is, whether it is there or not, in the pane that
    /// HalvexMenuExtraTools::HalvexPrefsPlugins finds, which is none named "HalvexPro.prefPane".
    /// Nothing, after a log line, when there is no such pane.
    static std::optional<std::string> getHalvexBGApplicationPath();

    /// Whether the background application is running; which process it is goes to @p serialNumber
    /// when that is not null and there is one. Each process of the older generation that is come
    /// across is logged, and does not count.
    static bool findHalvexBGProcess(platform::ProcessSerialNumber* serialNumber);
};
