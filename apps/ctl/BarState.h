#pragma once

#include "platform/base/NonCopyable.h"

#include <memory>
#include <string>
#include <vector>

namespace apps {

class ItemList;

/// The items that the bar had loaded or disabled when this object was created. Does not start the
/// bar: if it is not running, no item counts as loaded.
class BarState : platform::NonCopyable {
  public:
    BarState();
    ~BarState();

    bool isLoaded(const std::string& identifier) const;
    /// Returns what the bar was doing when the bundle at @p path crashed it (see ItemList), or an
    /// empty string if that bundle is not disabled.
    std::string crashStep(const std::string& path) const;

  private:
    std::vector<std::string> loaded_; ///< identifiers
    std::unique_ptr<ItemList> list_;
};

} // namespace apps
