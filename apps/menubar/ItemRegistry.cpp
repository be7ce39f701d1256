#include "apps/menubar/ItemRegistry.h"

#include "apps/menubar/ItemCollection.h"
#include "apps/shared/AbsolutePath.h"
#include "apps/shared/FileLock.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "paths/HomeFolders.h"
#include "paths/ovxPaths.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/runtime/Guard.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr const char* kJournalFile = "Menu Bar Step";
constexpr const char* kOwnClock = "Clock.menu";
constexpr std::int32_t kLeftmostPosition = 999;
constexpr std::chrono::milliseconds kRemovalRetryInterval{5};
constexpr std::size_t kMaximumRefusals = 100;

std::int32_t number(MenuExtraStatus status) {
    return static_cast<std::int32_t>(status);
}

/// Returns the path by which an item is admitted, loaded and stored. Resolved once, so that a link
/// that changes meanwhile has no effect.
std::string resolvedPath(const std::string& path) {
    return fileManager().resolvingSymbolicLinks(absolutePath(path));
}

std::string versionAt(const std::string& path) {
    const auto bundle = Bundle::bundleWithPath(path);
    return bundle ? bundle->version().value_or("") : "";
}

const char* nameOf(Failure failure) {
    switch (failure) {
    case Failure::Hang:
        return ItemList::kHang;
    case Failure::Exit:
        return ItemList::kExit;
    case Failure::Crash:
    case Failure::None:
        break;
    }
    return "crash";
}

void logDisabled(const ItemList::DisabledBundle& bundle) {
    logLine("menu extra %@ at %@ is disabled: %@", bundle.identifier, bundle.path,
            ItemList::reason(bundle));
}

bool isShipped(const std::string& identifier) {
    return std::ranges::count(menuextras::allKinds(), identifier,
                              &menuextras::MenuExtraKind::identifier) > 0;
}

std::string unknown(const std::string& identifier) {
    return identifier + ": unknown menu extra";
}

} // namespace

ItemRegistry::ItemRegistry(ItemCollection& items, CrashJournal& journal, Admission admission)
    : items_(items), journal_(journal), admission_(std::move(admission)) {
    connect(&items_, &ItemCollection::added, this, &ItemRegistry::itemsChanged);
    connect(&items_, &ItemCollection::removed, this, &ItemRegistry::itemsChanged);
    connect(&items_, &ItemCollection::sorted, this, &ItemRegistry::itemsChanged);
    connect(&items_, &ItemCollection::refused, this, &ItemRegistry::refuse);
}

ItemRegistry::~ItemRegistry() {
    if (list_)
        list_->flush();
    // Cleared here, because the items' code may still call this object.
    disconnect(&items_, nullptr, this, nullptr);
    items_.clear();
}

void ItemRegistry::start(const std::vector<std::string>& commandLine) {
    paths::makeHomeFolders(fileManager());
    const std::string folder = HalvexFilePaths::ovxGetUsersHalvexProSupportDir();
    list_ = std::make_unique<ItemList>(appendingPathComponent(folder, ItemList::kFileName),
                                       admission_.ownItemsFolder());
    journal_.open(appendingPathComponent(folder, kJournalFile));
    const bool hasList =
        fileManager().fileExists(appendingPathComponent(folder, ItemList::kFileName));
    {
        const FileLock lock(list_->lockFile());
        if (!list_->read())
            list_->insert(ownClock());
        disableCrashedItem();
    }
    ownItemsOnly_ = journal_.exitsRepeatedly();
    if (ownItemsOnly_) {
        logLine("the menu bar has exited three times within ten seconds for an unknown reason: "
                "starting without third-party menu extras");
        emit startedWithOwnItemsOnly();
    }
    restore();
    loadCommandLine(commandLine);
    loadOwnClockIfEmpty();
    arrange();
    if (!hasList && commandLine.empty())
        emit startedWithoutList();
}

ItemRecord ItemRegistry::ownClock() const {
    return {menuextras::kSystemClockID,
            appendingPathComponent(admission_.ownItemsFolder(), kOwnClock), 0, ""};
}

void ItemRegistry::disableCrashedItem() {
    const auto note = journal_.takeLastNote();
    if (!note)
        return;
    const ItemRecord& item = note->item;
    const ItemList::DisabledBundle bundle{item.identifier, item.path, item.version, note->step,
                                          nameOf(note->failure)};
    list_->disable(bundle);
    list_->write(); // not scheduled: another item may crash the bar before that
    if (!list_->findItem(item.identifier)) // it was being removed; restore() logs the others
        logDisabled(bundle);
    emit disabledAfterFailure(*note);
}

void ItemRegistry::restore() {
    std::vector<ItemRecord> records = list_->items();
    // MenuCracker comes first: other items may need it to be admitted.
    std::stable_partition(records.begin(), records.end(), [](const ItemRecord& record) {
        return record.identifier == menuextras::kMenuCrackerID;
    });
    for (const ItemRecord& record : records) {
        const std::string path = resolvedPath(record.path);
        if (!fileManager().isDirectory(path)) {
            logLine("cannot restore menu extra %@: no bundle at %@", record.identifier,
                    record.path);
        } else if (!isSkipped(path) && !isDisabled(path) && admits(path)) {
            items_.add(path, record.position, Origin::Request);
        }
    }
}

void ItemRegistry::loadCommandLine(const std::vector<std::string>& bundles) {
    for (const std::string& bundle : bundles) {
        const std::string path = resolvedPath(bundle);
        if (!isSkipped(path) && !isDisabled(path))
            items_.add(path, kLeftmostPosition, Origin::CommandLine);
    }
}

/// An empty list stays empty: the user has removed all items.
void ItemRegistry::loadOwnClockIfEmpty() {
    const ItemRecord clock = ownClock();
    if (items_.begin() != items_.end() || list_->items().empty() || isDisabled(clock.path))
        return;
    logLine("no menu extra could be loaded: showing the menu bar's own clock");
    items_.add(clock.path, clock.position, Origin::Request);
}

bool ItemRegistry::isSkipped(const std::string& path) const {
    return ownItemsOnly_ && deletingLastPathComponent(path) != admission_.ownItemsFolder();
}

bool ItemRegistry::isDisabled(const std::string& path) {
    const ItemList::DisabledBundle* disabled = list_->findDisabled(path);
    if (!disabled)
        return false;
    if (disabled->step != ItemList::kTurnedOff && versionAt(path) != disabled->version) {
        list_->changeLater([path](ItemList& list) { return list.enable(path); });
        return false;
    }
    logDisabled(*disabled);
    return true;
}

void ItemRegistry::change(ItemList::Change change) {
    list_->change(std::move(change));
    emit itemsChanged();
}

void ItemRegistry::refuse(const std::string& path, const std::string& reason) {
    if (refusals_.size() >= kMaximumRefusals && !refusals_.contains(path))
        refusals_.erase(refusals_.begin());
    refusals_[path] = reason;
    emit refused(path, reason);
    emit itemsChanged();
}

std::int32_t ItemRegistry::getMenuExtra(const std::string& identifier,
                                        MenuExtraReference& reference) {
    const Item* item = items_.find(identifier);
    reference = item ? item->reference : 0;
    return number(item ? MenuExtraStatus::NoError : MenuExtraStatus::NotLoaded);
}

std::int32_t ItemRegistry::addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                        std::int32_t, std::int32_t, std::int32_t) {
    const auto file = pathOfFileURL(url);
    if (!file) {
        logLine("cannot load menu extra: %@ is not a file URL", url);
        return number(MenuExtraStatus::BadParameter);
    }
    Addition addition{.path = resolvedPath(*file), .position = position};
    if (!fileManager().isDirectory(addition.path)) {
        logLine("cannot load menu extra: no bundle at %@", addition.path);
        return number(MenuExtraStatus::FileNotFound);
    }
    refusals_.erase(addition.path);
    // With Admit::System, the caller gets no error, and MenuCracker may be loaded before load().
    if (admission_.mode() != Admit::System) {
        if (!admits(addition.path))
            return number(MenuExtraStatus::Refused);
        store(addition);
    }
    loadLater(std::move(addition));
    return number(MenuExtraStatus::NoError);
}

bool ItemRegistry::admits(const std::string& path) {
    const auto cracker = items_.find(menuextras::kMenuCrackerID) ? Admission::Cracker::Loaded
                                                                 : Admission::Cracker::NotLoaded;
    const std::string reason = admission_.refusalReason(path, cracker);
    if (reason.empty())
        return true;
    logLine("menu extra at %@ declined: %@", path, reason);
    refuse(path, reason);
    return false;
}

/// Enables the bundle and inserts the item, before its code runs. A bundle that will be refused is
/// not inserted.
void ItemRegistry::store(Addition& addition) {
    addition.isStored = true;
    const std::string& path = addition.path;
    const ValidatedBundle bundle = validateBundle(path);
    if (!bundle) {
        change([path](ItemList& list) { return list.enable(path); });
        return;
    }
    const Item* loaded = items_.find(bundle.identifier);
    if (loaded) {
        change([path, record = loaded->record](ItemList& list) {
            const bool isEnabled = list.enable(path);
            return (record.path == path && list.insert(record)) || isEnabled;
        });
        return;
    }
    const ItemRecord record{bundle.identifier, path, addition.position, "", Origin::Request};
    if (const ItemRecord* old = list_->findItem(bundle.identifier))
        addition.replaced = *old;
    change([record](ItemList& list) {
        list.enable(record.path);
        list.insertOrReplace(record);
        return true;
    });
}

/// Reverts store() for an item that could not be loaded.
void ItemRegistry::withdraw(const Addition& addition) {
    const auto bundle = Bundle::bundleWithPath(addition.path);
    const std::string identifier = bundle ? bundle->bundleIdentifier().value_or("") : "";
    change([addition, identifier](ItemList& list) {
        const ItemRecord* item = list.findItem(identifier);
        if (!item || item->path != addition.path)
            return false;
        list.removeItem(identifier);
        if (addition.replaced)
            list.insert(*addition.replaced);
        return true;
    });
}

void ItemRegistry::loadLater(Addition addition) {
    QTimer::singleShot(0, this, [this, addition = std::move(addition)] { load(addition); });
}

void ItemRegistry::load(Addition addition) {
    if (!admits(addition.path))
        return withdraw(addition);
    if (!addition.isStored)
        store(addition);
    const ItemRecord* record = items_.add(addition.path, addition.position, Origin::Request);
    if (!record)
        return withdraw(addition);
    if (record->path != addition.path)
        refuse(addition.path, record->identifier + " is already loaded from " + record->path);
    else if (!list_->findItem(record->identifier)) // an earlier request for it has failed
        change([item = *record](ItemList& list) { return list.insert(item); });
    arrange();
}

/// Items that the list does not have are left of those with the same position.
void ItemRegistry::arrange() {
    std::unordered_map<std::string, std::size_t> ranks;
    for (const ItemRecord& record : list_->items())
        ranks.emplace(record.identifier, ranks.size());
    const auto place = [&](const Item& item) {
        const auto rank = ranks.find(item.identifier());
        return std::pair(item.record.position, rank == ranks.end() ? ranks.size() : rank->second);
    };
    items_.sort([&](const Item& one, const Item& other) { return place(one) < place(other); });
}

Item* ItemRegistry::find(MenuExtraReference reference) {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const Item& item) { return item.reference == reference; });
    return found == items_.end() ? nullptr : &*found;
}

std::int32_t ItemRegistry::removeMenuExtra(MenuExtraReference reference, std::int32_t) {
    if (const Item* item = find(reference))
        change([identifier = item->identifier()](ItemList& list) {
            return list.removeItem(identifier);
        });
    return removeOrDefer(reference);
}

std::int32_t ItemRegistry::removeOrDefer(MenuExtraReference reference) {
    if (currentOwner().empty())
        return remove(reference);
    removeLater(reference);
    return number(MenuExtraStatus::NoError);
}

// Retries until no item's code is running: that code may itself run an event loop, for example
// during an animation.
void ItemRegistry::removeLater(MenuExtraReference reference) {
    QTimer::singleShot(kRemovalRetryInterval, this, [this, reference] {
        if (currentOwner().empty())
            remove(reference);
        else
            removeLater(reference);
    });
}

std::int32_t ItemRegistry::remove(MenuExtraReference reference) {
    return number(items_.remove(reference) ? MenuExtraStatus::NoError : MenuExtraStatus::NotLoaded);
}

std::vector<qt::KnownItem> ItemRegistry::knownItems() {
    std::vector<qt::KnownItem> items;
    std::set<std::string> paths;
    const auto append = [&](const ItemRecord& record) {
        if (paths.insert(record.path).second)
            items.push_back(describe(record));
    };
    for (const Item& item : items_) {
        append(item.record);
        items.back().width = item.extra().length();
        items.back().state = "loaded";
        items.back().reason.clear();
    }
    for (const ItemRecord& record : list_->items())
        append(record);
    for (const auto& [path, bundle] : list_->disabledBundles())
        append({bundle.identifier, path, kLeftmostPosition, bundle.version});
    for (const auto& [path, reason] : refusals_)
        append({"", path, kLeftmostPosition, ""});
    return items;
}

/// Describes an item that is not loaded.
qt::KnownItem ItemRegistry::describe(const ItemRecord& record) const {
    qt::KnownItem item{
        .identifier = record.identifier, .path = record.path, .position = record.position};
    const auto bundle = Bundle::bundleWithPath(record.path);
    if (bundle) {
        if (item.identifier.empty())
            item.identifier = bundle->bundleIdentifier().value_or("");
        item.version = bundle->version().value_or("");
        item.name = bundle->stringForInfoDictionaryKey("CFBundleName").value_or("");
    }
    item.isOwn = deletingLastPathComponent(record.path) == admission_.ownItemsFolder() ||
                 isShipped(item.identifier);
    const ItemList::DisabledBundle* disabled = list_->findDisabled(record.path);
    const auto refusal = refusals_.find(record.path);
    if (!fileManager().isDirectory(record.path))
        std::tie(item.state, item.reason) = std::pair("missing", "no bundle at " + record.path);
    else if (disabled)
        std::tie(item.state, item.reason) = std::pair("disabled", ItemList::reason(*disabled));
    else if (refusal != refusals_.end())
        std::tie(item.state, item.reason) = std::pair("refused", refusal->second);
    else
        item.state = "not loaded";
    return item;
}

/// Returns an item that is loaded, stored or disabled.
std::optional<ItemRecord> ItemRegistry::knownRecord(const std::string& identifier) {
    if (const Item* item = items_.find(identifier))
        return item->record;
    if (const ItemRecord* stored = list_->findItem(identifier))
        return *stored;
    for (const auto& [path, bundle] : list_->disabledBundles())
        if (bundle.identifier == identifier)
            return ItemRecord{identifier, path, kLeftmostPosition, bundle.version};
    return std::nullopt;
}

std::string ItemRegistry::setPosition(const std::string& identifier, std::int32_t position) {
    Item* item = items_.find(identifier);
    if (!item && !list_->findItem(identifier))
        return unknown(identifier);
    change([identifier, position](ItemList& list) {
        const ItemRecord* stored = list.findItem(identifier);
        if (!stored)
            return false;
        ItemRecord moved = *stored;
        moved.position = position;
        list.insertOrReplace(std::move(moved));
        return true;
    });
    if (item)
        item->record.position = position;
    arrange();
    return {};
}

std::string ItemRegistry::enable(const std::string& identifier) {
    const auto record = knownRecord(identifier);
    if (!record)
        return unknown(identifier);
    if (items_.find(identifier))
        return {};
    if (!fileManager().isDirectory(record->path))
        return identifier + ": no bundle at " + record->path;
    refusals_.erase(record->path);
    if (!admits(record->path))
        return identifier + ": " + refusals_[record->path];
    Addition addition{.path = record->path, .position = record->position, .isStored = true};
    if (list_->findItem(identifier))
        addition.replaced = *record;
    change([record](ItemList& list) {
        const bool isEnabled = list.enable(record->path);
        return list.insert(*record) || isEnabled;
    });
    loadLater(std::move(addition));
    return {};
}

std::string ItemRegistry::disable(const std::string& identifier) {
    const auto record = knownRecord(identifier);
    if (!record)
        return unknown(identifier);
    const Item* item = items_.find(identifier);
    const bool isMissing = !item && !fileManager().isDirectory(record->path);
    change([record, isMissing, version = versionAt(record->path)](ItemList& list) {
        if (isMissing) {
            list.enable(record->path);
            list.removeItem(record->identifier);
            return true;
        }
        list.disable({record->identifier, record->path, version, ItemList::kTurnedOff});
        return true;
    });
    if (item)
        removeOrDefer(item->reference);
    return {};
}

} // namespace apps
