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
/// Operations are stateless and never throw. If memory runs out, they log this and return
/// std::nullopt, false or -1. Unless noted otherwise, an unknown tag is logged as
/// "error tag not set". All operations are synchronous. Call them from a thread that may block:
/// loading can take about 4 seconds, and 5 seconds more if the bar hangs. No lock is taken: if two
/// processes install the same menu extra at the same time, one may log a failure, but the installed
/// copy is complete.
class HalvexMenuExtraTools {
  public:
    HalvexMenuExtraTools() = delete;

    // Catalogue

    /// Returns the path of the preference pane: the one loaded in this process, else the
    /// one installed for all users, else this user's. Returns std::nullopt if no pane is
    /// found. Logs nothing.
    static std::optional<std::string> HalvexPrefsPanelPath();
    /// Returns the folder in this pane that contains the shipped menu extras and
    /// "MenuCracker.menu". Returns std::nullopt if no pane is found. Logs nothing.
    static std::optional<std::string> HalvexPrefsPlugins();
    /// Returns the tag of the menu extra with this bundle identifier, or -1. Identifiers are
    /// case-sensitive. Logs nothing.
    static std::int32_t menuExtraTagFromID(const std::string& identifier);
    /// Returns the path of the shipped bundle, whether or not it exists. Returns std::nullopt if
    /// there is no preference pane (not logged) or the tag is unknown (logged).
    static std::optional<std::string> menuExtraPaths(std::int32_t tag);
    /// Returns the path of the installed copy, whether or not it exists. Returns std::nullopt if
    /// the tag is unknown (logged).
    static std::optional<std::string> menuExtraInstalledPaths(std::int32_t tag);

    // Installation

    /// Copies the bundle at @p path to the installed folder. Replaces a copy with the same name,
    /// see FileManager::replaceItem: if the process is killed, either copy is installed, but if
    /// copying fails, none is left. If the old copy cannot be removed completely, or @p path is the
    /// installed copy or lies inside it, leaves the copy unchanged and returns true.
    ///
    /// Returns false if the installed folder is not writable, @p path does not exist, or copying
    /// fails. Failures and new installations are logged. A replacement is logged if myDebug is not
    /// 0 or this process has already read the old bundle.
    static bool installMenuExtra(const std::string& path);
    /// Removes the installed copy whose name is the last component of @p path; nothing else at
    /// @p path is touched. If the copy cannot be deleted, moves it to the Trash, which is logged
    /// whether or not it succeeds. Returns false if there is no such copy (not logged), if it or
    /// its folder is not writable (logged), if @p path contains no name (logged), or if moving to
    /// the Trash fails.
    static bool removeMenuExtra(const std::string& path);
    /// Installs the shipped bundle if its CFBundleVersion differs from that of the installed copy,
    /// or if neither has a CFBundleVersion. In both cases logs the two versions and returns true,
    /// even if the installation fails. Returns false if either bundle is missing, is unreadable or
    /// has no information dictionary.
    static bool DoUpgradeIfNeeded(std::int32_t tag);
    /// Upgrades tags 1, 2 and 5. If any of them was upgraded, unloads tags 31, 32 and 6, removes
    /// their installed copies (logged), and returns true.
    static bool DoUpgradeIfNeeded();
    /// Returns whether a menu extra with tag 31, 3, 6 or 32 is loaded.
    static bool isHalvexV2Running();
    /// Unloads the menu extras with tags 31, 3, 32 and 6 that are loaded. Removes no files.
    static void HalvexV2Remove();
    /// Unloads the menu extras with tags 1, 33, 5 and 2 that are loaded. Removes no files.
    static void HalvexProRemove();

    // Loading

    /// Returns whether the menu bar has loaded the menu extra with this bundle identifier. Returns
    /// false if no bar replies.
    static bool isExtraLoaded(const std::string& identifier);
    /// Returns whether the menu extra with this tag is loaded. Accepts tags 1 to 6, 31 and 32. For
    /// any other tag, logs "bad tag sent to isHalvexExtraLoaded:" and returns false.
    static bool isHalvexExtraLoaded(std::int32_t tag);
    /// Unloads the menu extra with this bundle identifier. If it is not loaded, only logs that.
    static void removeExtra(const std::string& identifier);
    /// Logs the architectures of the bundle at a file URL, or why it is not a bundle with code. If
    /// myDebug is set, also logs whether the system's loader accepts the code.
    static void checkPreflight(const std::string& url);
    /// Loads the bundle at a file URL in the menu bar unless the menu extra with the identifier
    /// @p withID is already loaded. Calls checkPreflight, requests the load and waits up to 2
    /// seconds for the menu extra to appear. If it does not appear, requests MenuCracker and
    /// repeats the request, unless MenuCracker is already loaded. Then waits up to 2 seconds more.
    ///
    /// Returns
    /// - 0 if the menu extra was already loaded or appears within the first wait,
    /// - -2 if there is no URL (logged),
    /// - the status of the last request if the menu extra appears within the second wait,
    /// - otherwise that status, or -1 if it is 0 (logged).
    static std::int32_t loadExtraWithCrack(const std::optional<std::string>& url,
                                           const std::string& withID);
    /// Installs and loads a menu extra if @p state is not 0; otherwise unloads it and removes the
    /// installed copy. Accepts tags 1 to 6 and 33. After a fresh load of tag 1, unloads the
    /// system's clock. Failures are logged; a missing preference pane and an exception also beep.
    static void menuExtraToggle(std::int32_t tag, std::int32_t state);
};
