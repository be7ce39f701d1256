#pragma once

#include "apps/shared/ItemRecord.h"

#include <string>
#include <string_view>
#include <vector>

namespace platform {
class PropertyList;
}

namespace apps {

/// The items that the bar comes back with, from right to left, and the bundles that crashed it.
/// Kept in a property list:
///
///     Items     an array of dictionaries: Identifier, Path, Position
///     Left Out  an array of dictionaries: Identifier, Path, Version, Step
///
/// Path is a name alone for the bar's own items, so that they are found where the bar is. A bundle
/// in both arrays is not loaded while its CFBundleVersion is the Version. Step is what the bar was
/// doing: "loading", "first drawing", "click", "menu", or "its own code".
class ItemList {
  public:
    struct LeftOut {
        std::string identifier;
        std::string path;
        std::string version;
        std::string step;
    };

    /// Its name in the user's product folder.
    static constexpr const char* kFileName = "Menu Bar Items.plist";

    ItemList(std::string file, std::string ownItemsFolder);

    /// Reads the file. Gives false when there is none, or none that can be understood; the latter
    /// is logged, nothing is taken from it, and it is kept under another name. A row that makes no
    /// sense is logged and passed over.
    bool read();
    /// Replaces the file as a whole; whether that was done. A failure is logged, and so is a row
    /// that no file can hold and that is left out.
    bool write() const;

    const std::vector<ItemRecord>& items() const { return items_; }

    /// Puts an item in its place by position, of equal ones to the left, unless there is one with
    /// its identifier. Whether the list has changed.
    bool insert(ItemRecord item);
    /// The same, but in the place of one with its identifier and another path.
    bool put(ItemRecord item);
    bool erase(std::string_view identifier);

    /// Why the bundle is left out; null when it is not.
    const LeftOut* find(std::string_view path) const;
    void leaveOut(LeftOut bundle);
    bool forgive(std::string_view path);
    /// Forgets the bundle at @p path altogether.
    void forget(std::string_view path);

  private:
    std::string writtenPath(const std::string& path) const;
    std::string readPath(std::string_view path) const;
    void readItem(const platform::PropertyList& row);
    void readLeftOut(const platform::PropertyList& row);
    void keepAside() const;

    std::string file_;
    std::string ownItemsFolder_;
    std::vector<ItemRecord> items_;
    std::vector<LeftOut> leftOut_;
};

} // namespace apps
