#pragma once

#include "apps/menubar/ItemLoader.h"
#include "apps/menubar/ItemWidget.h"
#include "apps/shared/ItemRecord.h"
#include "platform/MenuExtraServer.h"

#include <memory>
#include <string>

namespace apps {

/// A loaded item in the bar.
struct Item {
    platform::MenuExtraReference reference = 0; ///< never 0 once the item is in the bar
    ItemRecord record;
    LoadedItem loaded;
    std::unique_ptr<ItemWidget> widget; ///< destroyed before the view that it draws
    bool wasDrawn = false;

    const std::string& identifier() const { return record.identifier; }
    platform::MenuExtra& extra() const { return *loaded.extra; }
};

} // namespace apps
