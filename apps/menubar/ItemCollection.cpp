#include "apps/menubar/ItemCollection.h"

#include "apps/menubar/CrashJournal.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#include "platform/UserNotifications.h"
#include "platform/Workspace.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <utility>

using namespace platform;

namespace apps {

ItemCollection::ItemCollection(qt::QtGraphics& graphics, CrashJournal& journal, QWidget& bar)
    : graphics_(graphics), journal_(journal), bar_(bar) {}

ItemCollection::~ItemCollection() = default;

const ItemRecord* ItemCollection::add(const std::string& path, std::int32_t position,
                                      Origin origin) {
    const ValidatedBundle bundle = validateBundle(path);
    if (!bundle) {
        logLine("menu extra at %@ refused: %@", path, bundle.reason);
        emit refused(path, bundle.reason);
        return nullptr;
    }
    if (const Item* loaded = find(bundle.identifier)) {
        logLine("menu extra %@ is already loaded", bundle.identifier);
        return &loaded->record;
    }
    ItemRecord record{bundle.identifier, path, position, bundle.bundle->version().value_or(""),
                      origin};
    LoadedItem loaded = load(bundle, record);
    if (!loaded) {
        emit refused(path, loaded.reason);
        return nullptr;
    }
    Item& item = insert(std::move(record), std::move(loaded));
    emit added(item);
    return &item.record;
}

LoadedItem ItemCollection::load(const ValidatedBundle& bundle, const ItemRecord& record) {
    journal_.add(record);
    emit aboutToLoad(record);
    const CrashJournal::Scope step(journal_, "loading", record.identifier);
    LoadedItem item;
    runGuarded(record.identifier, [&] { item = loadItem(bundle); });
    if (item)
        journal_.setCode(record.identifier, item.code->addresses());
    return item;
}

Item& ItemCollection::insert(ItemRecord record, LoadedItem loaded) {
    const auto next = std::find_if(items_.begin(), items_.end(), [&](const Item& other) {
        return other.record.position > record.position;
    });
    auto widget = std::make_unique<ItemWidget>(record.identifier, loaded.extra, graphics_, &bar_);
    return *items_.insert(
        next, Item{++lastReference_, std::move(record), std::move(loaded), std::move(widget)});
}

bool ItemCollection::remove(MenuExtraReference reference) {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const Item& item) { return item.reference == reference; });
    if (found == items_.end()) {
        logLine("cannot remove menu extra: unknown reference %d", reference);
        return false;
    }
    const CrashJournal::Scope step(journal_, "unloading", found->identifier());
    emit aboutToRemove(*found);
    runGuarded(found->identifier(), [&] { found->extra().willUnload(); });
    std::list<Item> detached;
    detached.splice(detached.end(), items_, found);
    runGuarded(detached.front().identifier(), [&] { unload(detached.front()); });
    emit removed(detached.front().record);
    return true;
}

void ItemCollection::unload(Item& item) {
    // Unloaded after the pointers below are destroyed: they may call the item's code.
    std::unique_ptr<LoadedCode> code = std::move(item.loaded.code);
    const std::weak_ptr<MenuExtra> extra = item.loaded.extra;
    const std::weak_ptr<MenuExtraView> view = item.extra().view();
    item.widget.reset();
    item.loaded.extra.reset();
    sharedWorkspace().notificationCenter().removeExpiredObservers();
    distributedNotificationCenter().removeExpiredObservers();
    userNotifications().removeExpired();
    if (extra.expired() && view.expired())
        return;
    logLine("menu extra %@ is still referenced: its code stays loaded", item.identifier());
    codeInUse_.push_back(std::move(code));
}

void ItemCollection::clear() {
    while (!items_.empty())
        remove(items_.back().reference);
}

Item* ItemCollection::find(std::string_view identifier) {
    const auto found = std::find_if(items_.begin(), items_.end(), [&](const Item& item) {
        return item.identifier() == identifier;
    });
    return found == items_.end() ? nullptr : &*found;
}

Item* ItemCollection::find(const MenuExtra& extra) {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const Item& item) { return &item.extra() == &extra; });
    return found == items_.end() ? nullptr : &*found;
}

} // namespace apps
