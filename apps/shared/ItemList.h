#pragma once

#include "apps/shared/ItemRecord.h"

#include <string>
#include <string_view>
#include <vector>

namespace platform {
class PropertyList;
}

namespace apps {

/// The items that the bar restores at start, ordered by position, rightmost first, and the bundles
/// that are disabled because they crashed it. Stored in a property list:
///
///     Items     an array of dictionaries: Identifier, Path, Position
///     Left Out  an array of dictionaries: Identifier, Path, Version, Step
///
/// For the bar's own items, Path is only the bundle's name, so that they are found wherever the bar
/// is installed. A disabled bundle is skipped at start while its CFBundleVersion equals Version.
/// Step is what the bar was doing: "loading", "first drawing", "click", "menu" or "its own code".
class ItemList {
  public:
    struct DisabledBundle {
        std::string identifier;
        std::string path;
        std::string version;
        std::string step;
    };

    /// The file's name in the user's product folder.
    static constexpr const char* kFileName = "Menu Bar Items.plist";

    /// @p file need not exist. @p ownItemsFolder is the folder of the bar's own items.
    ItemList(std::string file, std::string ownItemsFolder);

    /// Reads the file. Returns false if the file is missing or is not a list of items. In the
    /// latter case, logs the reason and appends ".unreadable" to the file's name. Invalid rows are
    /// logged and skipped.
    bool read();
    /// Replaces the file atomically. Returns false, and logs, on failure. A row that a property
    /// list cannot represent is logged and skipped.
    bool write() const;

    const std::vector<ItemRecord>& items() const { return items_; }

    /// Inserts an item by its position, to the left of items with the same position, unless the
    /// list has an item with that identifier. Returns whether the list has changed.
    bool insert(ItemRecord item);
    /// Like insert(), but replaces an item that has the same identifier and a different path.
    bool insertOrReplace(ItemRecord item);
    /// Removes an item. Returns whether the list has changed.
    bool removeItem(std::string_view identifier);
    /// Removes the items with the bundle at @p path, and enables the bundle.
    void removeBundle(std::string_view path);

    /// Returns the entry of the disabled bundle at @p path, or null if it is not disabled. The
    /// pointer is valid until the list changes.
    const DisabledBundle* findDisabled(std::string_view path) const;
    /// Disables a bundle. Replaces an existing entry with the same path.
    void disable(DisabledBundle bundle);
    /// Removes the entry of the bundle at @p path. Returns whether there was one.
    bool enable(std::string_view path);

  private:
    std::string storedPath(const std::string& path) const;
    std::string resolvedPath(std::string_view storedPath) const;
    void readItem(const platform::PropertyList& row);
    void readDisabled(const platform::PropertyList& row);
    void moveUnreadableFile() const;

    std::string file_;
    std::string ownItemsFolder_;
    std::vector<ItemRecord> items_;
    std::vector<DisabledBundle> disabled_;
};

} // namespace apps
