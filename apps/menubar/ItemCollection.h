#pragma once

#include "apps/menubar/Item.h"

#include <QObject>

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace apps {

class CrashJournal;

/// The loaded items, ordered by position, rightmost first. Of items with equal positions, the one
/// added later is further left. Owns each item, its code and its widget. Main thread only.
class ItemCollection final : public QObject {
    Q_OBJECT

  public:
    /// Items draw with @p graphics, and their widgets become children of @p bar. Loading is
    /// recorded in @p journal.
    ItemCollection(platform::qt::QtGraphics& graphics, CrashJournal& journal, QWidget& bar);
    /// Does not unload the items properly (see remove()): call clear() first.
    ~ItemCollection() override;

    /// Validates and loads the bundle in the folder @p path. Returns the record of the loaded item,
    /// which is valid until the item is removed, or null if the bundle was refused or could not be
    /// loaded. If an item with the bundle's identifier is already loaded, returns that item's
    /// record. All outcomes but success are logged with the path or identifier.
    const ItemRecord* add(const std::string& path, std::int32_t position, Origin origin);
    /// Calls the item's willUnload, then unloads the item and its code. If the item is still
    /// referenced, its code stays loaded and a line is logged. Exceptions from the item are logged
    /// and swallowed. Returns false, and logs, if no item has the reference.
    bool remove(platform::MenuExtraReference reference);
    /// Removes all items, leftmost first.
    void clear();

    /// These return null if the item is not loaded.
    Item* find(std::string_view identifier);
    Item* find(const platform::MenuExtra& extra);

    /// Reorders the items. References to them stay valid.
    template <class Less>
    void sort(Less less) {
        items_.sort(less);
        emit sorted();
    }

    std::list<Item>::iterator begin() { return items_.begin(); }
    std::list<Item>::iterator end() { return items_.end(); }

  signals:
    /// Emitted before the code of a third-party or own item is loaded.
    void aboutToLoad(const apps::ItemRecord& record);
    void added(apps::Item& item);
    void aboutToRemove(apps::Item& item);
    /// Emitted after the item and its code have been unloaded.
    void removed(const apps::ItemRecord& record);
    void sorted();
    /// Emitted if the bundle at @p path is refused or cannot be loaded.
    void refused(const std::string& path, const std::string& reason);

  private:
    LoadedItem load(const ValidatedBundle& bundle, const ItemRecord& record);
    Item& insert(ItemRecord record, LoadedItem loaded);
    void unload(Item& item);

    platform::qt::QtGraphics& graphics_;
    CrashJournal& journal_;
    QWidget& bar_;
    std::list<Item> items_;
    platform::MenuExtraReference lastReference_ = 0;
    std::vector<std::unique_ptr<platform::LoadedCode>> codeInUse_; // of items still referenced
};

} // namespace apps
