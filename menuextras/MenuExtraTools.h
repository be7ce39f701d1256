#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The product's menu extras: which ones there are, their bundles on disk, and their coming and
/// going in the running menu bar.
///
/// A menu extra is known by a tag: 1 clock, 2 application switcher, 3 to-do, 4 wireless, 5 dates,
/// 6 older calendar, 31 and 32 clock and switcher of the second generation, 33 time only. Its
/// bundle is shipped in the preference pane, and runs from the copy that is installed in the
/// user's "Menu Extras" folder. That folder is made when it is missing.
///
/// Nothing is kept between calls, and nothing throws. What is logged stands beside each operation;
/// an unknown tag is logged as "error tag not set". Each operation comes to its end on the thread
/// that calls it, any that may block: those that load sleep for about 4 seconds in all, and a bar
/// that hangs lets them wait 5 seconds more. Nothing is locked: of two processes that install the
/// same menu extra at once one may log that it failed, but what is installed is whole.
class HalvexMenuExtraTools {
  public:
    HalvexMenuExtraTools() = delete;

    // The catalogue

    /// Where the preference pane lies: the one that this process has loaded, else the one for all
    /// users, else this user's; nothing when there is none. Nothing is logged.
    static std::optional<std::string> HalvexPrefsPanelPath();
    /// The folder in the same pane that holds the shipped menu extras, and "MenuCracker.menu".
    static std::optional<std::string> HalvexPrefsPlugins();
    /// The tag of the menu extra with this very bundle identifier, or -1. Nothing is logged.
    static std::int32_t menuExtraTagFromID(const std::string& identifier);
    /// Where the shipped bundle of a tag belongs; nothing without a preference pane (not logged)
    /// and for an unknown tag (logged). Whether it is there is not looked at.
    static std::optional<std::string> menuExtraPaths(std::int32_t tag);
    /// Where the installed bundle of a tag belongs; nothing for an unknown tag (logged).
    static std::optional<std::string> menuExtraInstalledPaths(std::int32_t tag);

    // Installing, removing, upgrading

    /// Copies the bundle at @p path into the installed folder, in place of an older copy; all that
    /// it does and each failure is logged. True when a copy of that name is there afterwards, which
    /// is the old one when that cannot be removed. The old one goes first: when the copying fails
    /// there is none. @p path may lie in the copy itself, which then
    /// stays.
    static bool installMenuExtra(const std::string& path);
    /// Removes the installed copy that has the last component of @p path as its name, and nothing
    /// else at @p path; one that cannot be deleted goes to the Trash (logged, whether
    /// that takes it or not). False when there is
    /// none (not logged), when it or its folder cannot be written (logged), when @p path names
    /// nothing (logged), and when the Trash does not take it.
    static bool removeMenuExtra(const std::string& path);
    /// Installs the shipped bundle of a tag when its CFBundleVersion is another one than the
    /// installed one's (logged); whatever comes of that, the answer is true. False when either is
    /// missing, cannot be read, or has no information dictionary.
    static bool DoUpgradeIfNeeded(std::int32_t tag);
    /// Upgrades tags 1, 2 and 5. When any of them was, tags 31, 32 and 6 are taken out of the menu
    /// bar and from the disk (logged), and the answer is true.
    static bool DoUpgradeIfNeeded();
    /// Whether a menu extra of tag 31, 3, 6 or 32 is loaded.
    static bool isHalvexV2Running();
    /// Unloads tags 31, 3, 32 and 6 where they are loaded. Files stay.
    static void HalvexV2Remove();
    /// Unloads tags 1, 33, 5 and 2 where they are loaded. Files stay.
    static void HalvexProRemove();

    // In the menu bar

    static bool isExtraLoaded(const std::string& identifier);
    /// For tags 1 to 6, 31 and 32; any other is false and logged.
    static bool isHalvexExtraLoaded(std::int32_t tag);
    /// Unloads a menu extra; one that is not loaded is logged.
    static void removeExtra(const std::string& identifier);
    /// Logs what the bundle at a file URL has code for, and with myDebug whether the system's
    /// loader would load it.
    static void checkPreflight(const std::string& url);
    /// Has the menu bar load the bundle at a file URL, and waits until it is there: 2 seconds,
    /// then, after having MenuCracker loaded if it is not, 2 seconds more. 0 when the item was
    /// there before or comes in the first wait; -2 without a URL (logged); else the status of the
    /// last request, and when the item never came (logged) at least not 0 but -1.
    static std::int32_t loadExtraWithCrack(const std::optional<std::string>& url,
                                           const std::string& withID);
    /// Installs and loads a menu extra (@p state not 0), or unloads it and removes the installed
    /// copy; for tags 1 to 6 and 33. When the clock of tag 1 has just been loaded the system's own
    /// is unloaded. What fails is logged, a missing preference pane and an exception also beep.
    static void menuExtraToggle(std::int32_t tag, std::int32_t state);
};
