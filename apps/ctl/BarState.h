#pragma once

#include "platform/base/NonCopyable.h"

#include <memory>
#include <string>
#include <vector>

namespace apps {

class ItemList;

/// A snapshot of the items that the bar has loaded and of those it has disabled. Does not start a
/// bar; without one, no item is loaded.
class BarState : platform::NonCopyable {
  public:
    BarState();
    ~BarState();

    bool isLoaded(const std::string& identifier) const;
    /// Returns what the bar was doing when the bundle at @p path crashed it, or an empty string if
    /// the bar has not disabled that bundle.
    std::string crashStep(const std::string& path) const;

  private:
    std::vector<std::string> loaded_; ///< identifiers
    std::unique_ptr<ItemList> list_;
};

} // namespace apps
