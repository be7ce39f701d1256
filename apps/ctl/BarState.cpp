#include "apps/ctl/BarState.h"

#include "apps/shared/ItemList.h"
#include "paths/ovxPaths.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"

#include <algorithm>

namespace apps {

BarState::BarState()
    : list_(std::make_unique<ItemList>(
          platform::appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(),
                                           ItemList::kFileName),
          "")) {
    list_->read();
    platform::qt::BarClient bar;
    if (!bar.processIdentifier())
        return;
    const auto items = bar.listMenuExtras();
    if (!items) {
        platform::logLine("cannot list the loaded menu extras: %@", items.reason);
        return;
    }
    for (const platform::qt::BarItem& item : *items.value)
        loaded_.push_back(item.identifier);
}

BarState::~BarState() = default;

bool BarState::isLoaded(const std::string& identifier) const {
    return std::ranges::count(loaded_, identifier) > 0;
}

std::string BarState::crashStep(const std::string& path) const {
    const ItemList::DisabledBundle* found = list_->findDisabled(path);
    return found ? found->step : "";
}

} // namespace apps
