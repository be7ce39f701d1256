#include "apps/ctl/BarItems.h"

#include "apps/shared/ItemList.h"
#include "paths/ovxPaths.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"

#include <algorithm>

namespace apps {

BarItems::BarItems()
    : list_(std::make_unique<ItemList>(
          platform::appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(),
                                           ItemList::kFileName),
          "")) {
    list_->read();
    platform::qt::BarClient bar;
    if (!bar.processIdentifier())
        return;
    const auto items = bar.listMenuExtras();
    if (!items)
        platform::logLine("which menu extras are loaded is not known: %@", items.reason);
    for (std::size_t i = 0; items && i < items.value->size(); ++i)
        loaded_.push_back((*items.value)[i].identifier);
}

BarItems::~BarItems() = default;

bool BarItems::isLoaded(const std::string& identifier) const {
    return std::ranges::count(loaded_, identifier) > 0;
}

std::string BarItems::leftOutStep(const std::string& path) const {
    const ItemList::LeftOut* found = list_->find(path);
    return found ? found->step : "";
}

} // namespace apps
