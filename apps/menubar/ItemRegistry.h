#pragma once

#include "apps/menubar/Admission.h"
#include "apps/shared/ItemList.h"
#include "platform/MenuExtraServer.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace apps {

class CrashJournal;
class ItemCollection;

/// Manages the bar's items: admits or declines the items that programs request, stores the list of
/// items and restores it at the next start, and disables an item that crashed the bar. Installed as
/// the MenuExtraServer of the bar's process. Main thread only.
class ItemRegistry final : public QObject, public platform::MenuExtraServer {
  public:
    ItemRegistry(ItemCollection& items, CrashJournal& journal, Admission admission);
    /// Writes pending changes of the list and unloads all items.
    ~ItemRegistry() override;

    /// Loads the items of the stored list, or the bar's own clock if the list is missing or
    /// unreadable. Then loads the bundles in @p commandLine, which are neither checked for
    /// admission nor stored. Disabled bundles are skipped. Items whose bundle is missing are
    /// removed from the list. Failures are logged.
    void start(const std::vector<std::string>& commandLine);

    std::int32_t getMenuExtra(const std::string& identifier,
                              platform::MenuExtraReference& reference) override;
    /// Checks the URL and returns; the item is loaded later, from the main loop. An item that is
    /// not admitted is logged and refused. With Admit::System, admission is checked only when the
    /// item is loaded, so the status is 0 even if the item is then refused. A disabled bundle is
    /// enabled again before it is loaded.
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t) override;
    /// If called while an item's code is running, even that of the item to be removed, returns 0
    /// and defers the removal until that code has returned.
    std::int32_t removeMenuExtra(platform::MenuExtraReference reference,
                                 std::int32_t flags) override;

  private:
    void disableCrashedItem();
    void restore();
    void loadCommandLine(const std::vector<std::string>& bundles);
    bool admits(const std::string& path) const;
    bool isDisabled(const std::string& path);
    void add(const std::string& path, std::int32_t position);
    std::int32_t remove(platform::MenuExtraReference reference);
    void removeLater(platform::MenuExtraReference reference);
    void scheduleWrite();
    void write();

    ItemCollection& items_;
    CrashJournal& journal_;
    Admission admission_;
    std::unique_ptr<ItemList> list_; // null before start
    bool changed_ = false;           // since the list was written
    bool writeScheduled_ = false;
    platform::ScopedService<platform::MenuExtraServer> asServer_{*this};
};

} // namespace apps
