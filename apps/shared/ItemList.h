#pragma once

#include "apps/shared/ItemRecord.h"
#include "platform/base/NonCopyable.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace platform {
class PropertyList;
}

namespace apps {

/// The items that the bar restores at start, ordered by position, rightmost first, and the bundles
/// that are disabled. Stored in a property list:
///
///     Items     an array of dictionaries: Identifier, Path, Position
///     Left Out  an array of dictionaries: Identifier, Path, Version, Step, Failure
///
/// For the bar's own items, Path is only the bundle's name, so that they are found wherever the bar
/// is installed. Step is what the bar was doing when the bundle ended it: "loading", "drawing",
/// "click", "menu", "unloading", "its own code" or "its own thread"; or kTurnedOff. Failure is how
/// it ended the bar, see reason(). A bundle that ended the bar is skipped at start while its
/// CFBundleVersion equals Version.
///
/// Several bars may share the file, so it is changed only under a lock, and a change is applied to
/// the contents that the file has then.
class ItemList : platform::NonCopyable {
  public:
    struct DisabledBundle {
        std::string identifier;
        std::string path;
        std::string version;
        std::string step;
        std::string failure = {};
    };

    /// The file's name in the user's product folder.
    static constexpr const char* kFileName = "Menu Bar Items.plist";
    /// A larger file is neither read nor written.
    static constexpr std::size_t kMaximumBytes = 1 << 20;
    /// The step of a bundle that the user has disabled.
    static constexpr const char* kTurnedOff = "turned off";

    /// @p file need not exist. @p ownItemsFolder is the folder of the bar's own items.
    ItemList(std::string file, std::string ownItemsFolder);

    /// Returns the file that a FileLock must lock while the list is read and then written.
    std::string lockFile() const;
    /// Replaces the list with the file's contents. Returns false, and leaves the list unchanged, if
    /// the file is missing or is not a list of items. In the latter case, logs the reason and
    /// appends ".unreadable" to the file's name. Invalid rows are logged and skipped.
    bool read();
    /// Replaces the file atomically, even if another process has changed it. Returns false, and
    /// logs, on failure. A row that a property list cannot represent is logged and skipped.
    bool write() const;

    /// Returns whether it has changed the list. May be called again, for other contents.
    using Change = std::function<bool(ItemList& list)>;
    /// Locks and reads the file, applies @p change, and writes the file if the list has changed.
    /// Returns false if that fails; the next change then includes this one.
    bool change(Change change);
    /// Applies @p change to the list in memory. The file is changed with the next change, or by
    /// flush().
    void changeLater(Change change);
    /// Applies the changes that are not in the file yet. Returns false if that fails.
    bool flush();

    /// Returns the items, rightmost first.
    std::vector<ItemRecord> items() const;
    /// Returns the disabled bundles, ordered by path.
    const std::map<std::string, DisabledBundle, std::less<>>& disabledBundles() const {
        return disabled_;
    }
    /// Returns the item with this identifier, or null. The pointer is valid until the list changes.
    const ItemRecord* findItem(const std::string& identifier) const;

    /// Inserts an item by its position, to the left of items with the same position, unless the
    /// list has an item with that identifier. Returns whether the list has changed.
    bool insert(ItemRecord item);
    /// Like insert(), but first removes an item that has the same identifier.
    void insertOrReplace(ItemRecord item);
    /// Removes an item. Returns whether the list has changed.
    bool removeItem(const std::string& identifier);

    /// Returns the entry of the disabled bundle at @p path, or null if it is not disabled. The
    /// pointer is valid until the list changes.
    const DisabledBundle* findDisabled(std::string_view path) const;
    /// Disables a bundle. Replaces an existing entry with the same path.
    void disable(DisabledBundle bundle);
    /// Removes the entry of the bundle at @p path. Returns whether there was one.
    bool enable(std::string_view path);
    /// The failures of a bundle that kept the bar from responding or made it exit. Others crashed
    /// it.
    static constexpr const char* kHang = "hang";
    static constexpr const char* kExit = "exit";
    /// Returns why a bundle is disabled, human-readable: "it crashed the menu bar (loading)".
    static std::string reason(const DisabledBundle& bundle);

  private:
    // Of equal keys, the one inserted later comes later.
    using Items = std::multimap<std::int32_t, ItemRecord>;

    std::string storedPath(const std::string& path) const;
    std::string resolvedPath(std::string_view storedPath) const;
    void readItem(const platform::PropertyList& row);
    void readDisabled(const platform::PropertyList& row);
    void moveUnreadableFile() const;

    std::string file_;
    std::string ownItemsFolder_;
    Items items_;
    std::unordered_map<std::string, Items::iterator> byIdentifier_;
    std::map<std::string, DisabledBundle, std::less<>> disabled_;
    std::vector<Change> pending_; // not in the file yet
};

} // namespace apps
