#pragma once

#include "platform/base/NonCopyable.h"

#include <memory>
#include <string>
#include <vector>

namespace apps {

class ItemList;

/// What is known of the bar's items without starting a bar: which ones are loaded now, and which
/// ones it leaves out.
class BarItems : platform::NonCopyable {
  public:
    BarItems();
    ~BarItems();

    bool isLoaded(const std::string& identifier) const;
    /// What the bar was doing when the bundle at @p path crashed it; empty when it did not.
    std::string leftOutStep(const std::string& path) const;

  private:
    std::vector<std::string> loaded_; ///< identifiers
    std::unique_ptr<ItemList> list_;
};

} // namespace apps
