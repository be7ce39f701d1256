#pragma once

#include "apps/menubar/Admission.h"
#include "apps/menubar/CrashJournal.h"
#include "apps/shared/ItemList.h"
#include "platform/MenuExtraServer.h"
#include "platform/qt/BarItem.h"

#include <QObject>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace apps {

class ItemCollection;
struct Item;

/// Manages the bar's items: admits or declines the items that programs request, stores the list of
/// items and restores it at the next start, and disables an item that crashed the bar. A change of
/// the list is on disk before the operation that makes it returns, and before it runs any code of
/// an item. On the screen, the items are in the order in which the list restores them. Installed as
/// the MenuExtraServer of the bar's process. Main thread only.
class ItemRegistry final : public QObject, public platform::MenuExtraServer {
    Q_OBJECT

  public:
    ItemRegistry(ItemCollection& items, CrashJournal& journal, Admission admission);
    /// Writes pending changes of the list and unloads all items.
    ~ItemRegistry() override;

    /// Loads the items of the stored list, or the bar's own clock if the list is missing or
    /// unreadable. Then loads the bundles in @p commandLine, which are neither checked for
    /// admission nor stored. Disabled bundles are skipped, and so are all but the bar's own items
    /// if the last three bars exited within ten seconds for an unknown reason. They, and items
    /// whose bundle is missing, stay in the list. If no item could be loaded, loads the bar's own
    /// clock for this run. Failures are logged. Does not write the list unless an item crashed the
    /// previous bar.
    void start(const std::vector<std::string>& commandLine);

    std::int32_t getMenuExtra(const std::string& identifier,
                              platform::MenuExtraReference& reference) override;
    /// Checks the URL, stores the item and returns; the item is loaded later, from the main loop.
    /// If that fails, it is removed from the list, unless the list had it before. An item that is
    /// not admitted is logged and refused. With Admit::System, admission is checked only when the
    /// item is loaded, so the status is 0 even if the item is then refused. A disabled bundle is
    /// enabled again before it is loaded.
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t) override;
    /// If called while an item's code is running, even that of the item to be removed, returns 0
    /// and defers unloading it until that code has returned.
    std::int32_t removeMenuExtra(platform::MenuExtraReference reference,
                                 std::int32_t flags) override;

    /// Returns all items: those loaded, rightmost first, then those stored, disabled or refused.
    std::vector<platform::qt::KnownItem> knownItems();

    // These return why they failed, human-readable, or an empty string.

    /// Moves an item, loaded or only stored, to the left of the items with that position.
    std::string setPosition(const std::string& identifier, std::int32_t position);
    /// Enables a disabled bundle, stores the item if necessary, and loads it later, from the main
    /// loop. Does nothing if the item is loaded.
    std::string enable(const std::string& identifier);
    /// Unloads an item and disables its bundle until it is enabled or added again. If its bundle is
    /// missing, removes the item from the list instead.
    std::string disable(const std::string& identifier);

  signals:
    /// Emitted after the result of knownItems() has changed, except for an item's width.
    void itemsChanged();
    /// Emitted if a requested or restored bundle is not loaded. @p reason is human-readable.
    void refused(const std::string& path, const std::string& reason);
    /// Emitted by start() for an item that ended the previous bar.
    void disabledAfterFailure(const apps::CrashJournal::Note& note);
    /// Emitted by start() if the last three bars exited within ten seconds for an unknown reason.
    void startedWithOwnItemsOnly();
    /// Emitted by start() if there was no file with a list and the command line named no items.
    void startedWithoutList();

  private:
    /// A bundle that is to be loaded.
    struct Addition {
        std::string path;
        std::int32_t position = 0;
        bool isStored = false;
        std::optional<ItemRecord> replaced = {}; ///< the item that the list had before
    };

    void disableCrashedItem();
    void restore();
    void loadCommandLine(const std::vector<std::string>& bundles);
    void loadOwnClockIfEmpty();
    ItemRecord ownClock() const;
    bool admits(const std::string& path);
    bool isSkipped(const std::string& path) const;
    bool isDisabled(const std::string& path);
    void refuse(const std::string& path, const std::string& reason);
    void change(ItemList::Change change);
    void store(Addition& addition);
    void withdraw(const Addition& addition);
    void loadLater(Addition addition);
    void load(Addition addition);
    void arrange();
    Item* find(platform::MenuExtraReference reference);
    std::int32_t remove(platform::MenuExtraReference reference);
    std::int32_t removeOrDefer(platform::MenuExtraReference reference);
    void removeLater(platform::MenuExtraReference reference);
    std::optional<ItemRecord> knownRecord(const std::string& identifier);
    platform::qt::KnownItem describe(const ItemRecord& record) const;

    ItemCollection& items_;
    CrashJournal& journal_;
    Admission admission_;
    std::unique_ptr<ItemList> list_;              // null before start
    std::map<std::string, std::string> refusals_; // reasons by path; at most kMaximumRefusals
    bool ownItemsOnly_ = false;                   // in this run
    platform::ScopedService<platform::MenuExtraServer> asServer_{*this};
};

} // namespace apps
