#include "apps/ctl/BarState.h"

#include "apps/shared/ItemList.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"

#include <algorithm>
#include <iterator>
#include <utility>

using platform::qt::KnownItem;

namespace apps {

BarState::BarState() {
    platform::qt::BarClient bar;
    if (bar.processIdentifier()) {
        auto items = bar.items();
        if (!items)
            platform::logLine("cannot list the menu bar's items: %@", items.reason);
        items_ = std::move(items.value).value_or(std::vector<KnownItem>());
        return;
    }
    list_ = std::make_unique<ItemList>(
        platform::appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(),
                                         ItemList::kFileName),
        "");
    list_->read();
}

BarState::~BarState() = default;

std::vector<KnownItem> BarState::thirdPartyItems() const {
    std::vector<KnownItem> found;
    std::ranges::copy_if(items_, std::back_inserter(found),
                         [](const KnownItem& item) { return !item.isOwn; });
    if (!list_)
        return found;
    for (const auto& [path, bundle] : list_->disabledBundles()) {
        const auto kinds = menuextras::allKinds();
        const bool isShipped = std::ranges::count(kinds, bundle.identifier,
                                                  &menuextras::MenuExtraKind::identifier) > 0;
        if (!isShipped)
            found.push_back({.identifier = bundle.identifier,
                             .path = path,
                             .version = bundle.version,
                             .state = "disabled",
                             .reason = ItemList::reason(bundle)});
    }
    return found;
}

KnownItem BarState::find(const std::string& identifier, const std::string& path) const {
    KnownItem item{.identifier = identifier, .path = path, .state = "not loaded"};
    const auto known = std::ranges::find(items_, identifier, &KnownItem::identifier);
    if (known != items_.end())
        return *known;
    const auto* disabled = list_ ? list_->findDisabled(path) : nullptr;
    const auto* stored = list_ ? list_->findItem(identifier) : nullptr;
    if (stored && !platform::fileManager().isDirectory(stored->path)) {
        item.state = "missing";
        item.reason = "no bundle at " + stored->path;
    } else if (disabled) {
        item.state = "disabled";
        item.reason = ItemList::reason(*disabled);
    }
    return item;
}

} // namespace apps
