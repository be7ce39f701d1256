#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/qt/BarItem.h"

#include <memory>
#include <string>
#include <vector>

namespace apps {

class ItemList;

/// The states of the bar's items when this object was created. Does not start the bar: if it is not
/// running, no item is loaded, and the stored list has the reasons.
class BarState : platform::NonCopyable {
  public:
    BarState();
    ~BarState();

    /// Returns the state of an item whose bundle is installed at @p path.
    platform::qt::KnownItem find(const std::string& identifier, const std::string& path) const;
    /// Returns the items of third parties that the bar knows; if it is not running, those that it
    /// has disabled.
    std::vector<platform::qt::KnownItem> thirdPartyItems() const;

  private:
    std::vector<platform::qt::KnownItem> items_;
    std::unique_ptr<ItemList> list_; // null if the bar is running
};

} // namespace apps
