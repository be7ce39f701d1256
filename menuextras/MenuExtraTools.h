#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The product's menu extras: lists them, installs and removes their bundles, and loads and unloads
/// them in the running menu bar.
///
/// A menu extra is identified by a tag: 1 clock, 2 application switcher, 3 to-do, 4 wireless,
/// 5 dates, 6 older calendar, 31 and 32 second-generation clock and switcher, 33 time only. Its
/// bundle is shipped in the preference pane, and is loaded from the installed copy in the user's
/// "Menu Extras" folder. That folder is created if missing.
///
/// No operation keeps state or throws. An unknown tag is logged as "error tag
/// not set". All operations are synchronous. Call them from a thread that may block: loading can
/// take about 4 seconds, and 5 seconds more if the bar hangs. Nothing is locked: if two processes
/// install the same menu extra at the same time, one may log a failure, but the installed copy is
/// complete.
class HalvexMenuExtraTools {
  public:
    HalvexMenuExtraTools() = delete;

    // Catalogue

    /// Returns the path of the preference pane: of the one loaded in this process, else the one
    /// installed for all users, else this user's. Returns std::nullopt if there is none. Logs
    /// nothing.
    static std::optional<std::string> HalvexPrefsPanelPath();
    /// Returns the folder in this pane that contains the shipped menu extras and
    /// "MenuCracker.menu".
    static std::optional<std::string> HalvexPrefsPlugins();
    /// Returns the tag of the menu extra with this bundle identifier (case-sensitive), or -1. Logs
    /// nothing.
    static std::int32_t menuExtraTagFromID(const std::string& identifier);
    /// Returns the path of the shipped bundle, whether or not it exists. Returns std::nullopt if
    /// there is no preference pane (not logged) or the tag is unknown (logged).
    static std::optional<std::string> menuExtraPaths(std::int32_t tag);
    /// Returns the path of the installed copy, whether or not it exists. Returns std::nullopt if
    /// the tag is unknown (logged).
    static std::optional<std::string> menuExtraInstalledPaths(std::int32_t tag);

    // Installation

    /// Copies the bundle at @p path to the installed folder and replaces an older copy of the same
    /// name. Logs each step and each failure. Returns whether a copy exists afterwards, which is
    /// the old one if it cannot be removed. The old copy is removed first: if copying fails, there
    /// is none. If @p path is the installed copy or lies inside it, the copy is left unchanged.
    static bool installMenuExtra(const std::string& path);
    /// Removes the installed copy whose name is the last component of @p path; nothing else at
    /// @p path is touched. A copy that cannot be deleted is moved to the Trash (logged, whether or
    /// not that succeeds). Returns false if there is no such copy (not logged), if it or its folder
    /// is not writable (logged), if @p path contains no name (logged), or if moving to the Trash
    /// fails.
    static bool removeMenuExtra(const std::string& path);
    /// Installs the shipped bundle if its CFBundleVersion differs from that of the installed copy,
    /// and logs that it does. Returns true in this case, even if the installation fails. Returns
    /// false if either bundle is missing, unreadable, or has no information dictionary.
    static bool DoUpgradeIfNeeded(std::int32_t tag);
    /// Upgrades tags 1, 2 and 5. If any of them was upgraded, unloads tags 31, 32 and 6, removes
    /// their installed copies (logged), and returns true.
    static bool DoUpgradeIfNeeded();
    /// Returns whether a menu extra with tag 31, 3, 6 or 32 is loaded.
    static bool isHalvexV2Running();
    /// Unloads the loaded menu extras among tags 31, 3, 32 and 6. Leaves files alone.
    static void HalvexV2Remove();
    /// Unloads the loaded menu extras among tags 1, 33, 5 and 2. Leaves files alone.
    static void HalvexProRemove();

    // Loading

    /// Returns whether the menu bar has loaded the menu extra with this bundle identifier.
    static bool isExtraLoaded(const std::string& identifier);
    /// Same for a tag: 1 to 6, 31 or 32. Logs any other tag and returns false.
    static bool isHalvexExtraLoaded(std::int32_t tag);
    /// Unloads a menu extra. Logs one that is not loaded.
    static void removeExtra(const std::string& identifier);
    /// Logs the architectures of the bundle at a file URL, or why it is not a bundle with code. If
    /// myDebug is set, also logs whether the system's loader accepts the code.
    static void checkPreflight(const std::string& url);
    /// Asks the menu bar to load the bundle at a file URL, and waits up to 2 seconds until the menu
    /// extra with the identifier @p withID is loaded. If it does not appear, loads MenuCracker
    /// and repeats the request, unless MenuCracker is already loaded, and waits up to 2 seconds
    /// more. Returns 0 if the menu extra was already loaded or appears within the first wait, -2
    /// without a URL (logged), and otherwise the status of the last request. If the menu extra
    /// never appears (logged), returns -1 instead of a status of 0.
    static std::int32_t loadExtraWithCrack(const std::optional<std::string>& url,
                                           const std::string& withID);
    /// Installs and loads a menu extra (@p state is not 0), or unloads it and removes the installed
    /// copy. Accepts tags 1 to 6 and 33. After a fresh load of tag 1, unloads the system's clock.
    /// Failures are logged; a missing preference pane and an exception also beep.
    static void menuExtraToggle(std::int32_t tag, std::int32_t state);
};
