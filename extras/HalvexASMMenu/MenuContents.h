#pragma once

#include "platform/widgets/Menu.h"

#include <memory>
#include <vector>

namespace switcher {

/// Makes @p items the contents of @p menu. Inserts and removes only what differs, so that an open
/// menu keeps its highlighted entry.
void setContents(platform::Menu& menu,
                 const std::vector<std::shared_ptr<platform::MenuItem>>& items);

} // namespace switcher
