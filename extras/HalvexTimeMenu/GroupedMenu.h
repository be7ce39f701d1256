#pragma once

#include "platform/widgets/Menu.h"

#include <memory>
#include <vector>

/// Appends @p items to @p menu. If there are more than 30, puts them into submenus of 25 that are
/// named after their first and last item, such as "Oslo – Rome".
void appendGrouped(platform::Menu& menu,
                   const std::vector<std::shared_ptr<platform::MenuItem>>& items);
