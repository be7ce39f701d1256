#pragma once

#include "apps/menubar/Admission.h"
#include "apps/shared/ItemList.h"
#include "apps/shared/ItemRecord.h"
#include "platform/MenuExtraServer.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace apps {

class MenuBar;
class StepJournal;

/// Which items the bar has: it admits those that are asked for, remembers them from one run to the
/// next, and leaves out what crashed the bar. The bar's own process asks here what others ask over
/// the bus, as the process's MenuExtraServer. Main thread.
class ItemKeeper final : public platform::MenuExtraServer {
  public:
    ItemKeeper(MenuBar& menuBar, StepJournal& journal, Admission admission);
    /// Writes what has changed and is not written yet, and unloads all items.
    ~ItemKeeper() override;

    /// Loads the items that the last bar had, or the bar's own clock when there was none, and those
    /// named on the command line, which are for this run only. Whatever goes wrong is logged.
    void start(const std::vector<std::string>& commandLine);

    std::int32_t getMenuExtra(const std::string& identifier,
                              platform::MenuExtraReference& reference) override;
    /// Looks at the URL now; loading follows when the main loop runs next. An item that is not
    /// admitted is logged; with Admit::System the status is 0 all the same.
    std::int32_t addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                              std::int32_t, std::int32_t, std::int32_t) override;
    /// Within code of an item's, which may be its own, the removal follows when that has returned.
    std::int32_t removeMenuExtra(platform::MenuExtraReference reference,
                                 std::int32_t flags) override;

  private:
    void noteCrash();
    void restore();
    bool admits(const std::string& path) const;
    bool isLeftOut(const std::string& path);
    void add(const std::string& path, std::int32_t position);
    platform::MenuExtraStatus remove(platform::MenuExtraReference reference);
    void removeLater(platform::MenuExtraReference reference);
    void writeSoon();
    void write();

    MenuBar& menuBar_;
    StepJournal& journal_;
    Admission admission_;
    std::unique_ptr<ItemList> list_; // null before start
    bool changed_ = false;           // since the list was written
    bool writesSoon_ = false;
    platform::ScopedService<platform::MenuExtraServer> asServer_{*this};
};

} // namespace apps
