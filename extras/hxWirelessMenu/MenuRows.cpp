#include "extras/hxWirelessMenu/MenuRows.h"

#include <algorithm>

using namespace platform;

namespace extras {
namespace {

std::shared_ptr<MenuItem> newItem(const MenuRow& row, const std::weak_ptr<MenuTarget>& target) {
    std::shared_ptr<MenuItem> item;
    if (row.kind == MenuRow::Kind::Separator)
        item = MenuItem::separatorItem();
    else if (row.kind == MenuRow::Kind::Header)
        item = MenuItem::sectionHeader(row.title);
    else
        item = std::make_shared<MenuItem>(row.title, row.action, target);
    item->setIdentifier(row.identifier);
    return item;
}

void update(MenuItem& item, const MenuRow& row) {
    item.setTitle(row.title);
    item.setSubtitle(row.subtitle);
    item.setTrailingText(row.trailingText);
    item.setToolTip(row.toolTip);
    item.setImage(row.image);
    item.setTrailingImage(row.trailingImage);
    item.setState(row.state);
    item.setSubmenu(row.submenu);
}

} // namespace

void showRows(Menu& menu, const std::vector<MenuRow>& rows,
              const std::weak_ptr<MenuTarget>& target) {
    for (const auto& item : std::vector(menu.items()))
        if (std::ranges::count(rows, item->identifier(), &MenuRow::identifier) == 0)
            menu.removeItem(*item);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        auto item = menu.itemWithIdentifier(rows[i].identifier);
        const bool isInPlace = i < menu.items().size() && menu.items()[i] == item;
        if (item && !isInPlace)
            menu.removeItem(*item);
        if (!item)
            item = newItem(rows[i], target);
        update(*item, rows[i]);
        if (!isInPlace)
            menu.insertItem(item, i);
    }
}

} // namespace extras
