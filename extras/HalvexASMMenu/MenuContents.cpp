#include "extras/HalvexASMMenu/MenuContents.h"

#include <algorithm>

using namespace platform;

namespace switcher {

void setContents(Menu& menu, const std::vector<std::shared_ptr<MenuItem>>& items) {
    for (const auto& present : std::vector(menu.items()))
        if (std::ranges::find(items, present) == items.end())
            menu.removeItem(*present);
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i < menu.items().size() && menu.items()[i] == items[i])
            continue;
        menu.removeItem(*items[i]); // it may follow later
        menu.insertItem(items[i], i);
    }
}

} // namespace switcher
