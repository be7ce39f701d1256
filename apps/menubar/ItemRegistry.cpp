#include "apps/menubar/ItemRegistry.h"

#include "apps/menubar/CrashJournal.h"
#include "apps/menubar/ItemCollection.h"
#include "apps/shared/AbsolutePath.h"
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
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr const char* kJournalFile = "Menu Bar Step";
constexpr const char* kOwnClock = "Clock.menu";
constexpr std::int32_t kLeftmostPosition = 999;
// Flushing the list to disk is slow, so it is delayed until a new item has been drawn.
constexpr std::chrono::milliseconds kWriteDelay{20};
constexpr std::chrono::milliseconds kRemovalRetryInterval{5};

std::int32_t number(MenuExtraStatus status) {
    return static_cast<std::int32_t>(status);
}

std::string versionAt(const std::string& path) {
    const auto bundle = Bundle::bundleWithPath(path);
    return bundle ? bundle->version().value_or("") : "";
}

} // namespace

ItemRegistry::ItemRegistry(ItemCollection& items, CrashJournal& journal, Admission admission)
    : items_(items), journal_(journal), admission_(std::move(admission)) {}

ItemRegistry::~ItemRegistry() {
    write();
    // Disconnected first, so that the items stay in the list. Cleared here, because their code may
    // still call this object.
    disconnect(&items_, nullptr, this, nullptr);
    items_.clear();
}

void ItemRegistry::start(const std::vector<std::string>& commandLine) {
    paths::makeHomeFolders(fileManager());
    const std::string folder = HalvexFilePaths::ovxGetUsersHalvexProSupportDir();
    list_ = std::make_unique<ItemList>(appendingPathComponent(folder, ItemList::kFileName),
                                       admission_.ownItemsFolder());
    connect(&items_, &ItemCollection::removed, this, [this](const ItemRecord& record) {
        if (list_->removeItem(record.identifier))
            scheduleWrite();
    });
    journal_.open(appendingPathComponent(folder, kJournalFile));
    if (!list_->read())
        list_->insert({menuextras::kSystemClockID,
                       appendingPathComponent(admission_.ownItemsFolder(), kOwnClock), 0, ""});
    disableCrashedItem();
    restore();
    loadCommandLine(commandLine);
}

void ItemRegistry::disableCrashedItem() {
    const auto note = journal_.takeLastNote();
    if (!note)
        return;
    const ItemRecord& item = note->item;
    if (item.origin == Origin::Request)
        list_->insert(item);
    list_->disable({item.identifier, item.path, item.version, note->step});
    list_->write(); // not scheduled: another item may crash the bar before that
}

void ItemRegistry::restore() {
    std::vector<ItemRecord> records = list_->items();
    // MenuCracker comes first: other items may need it to be admitted.
    std::stable_partition(records.begin(), records.end(), [](const ItemRecord& record) {
        return record.identifier == menuextras::kMenuCrackerID;
    });
    for (const ItemRecord& record : records) {
        if (!fileManager().isDirectory(record.path)) {
            logLine("cannot restore menu extra %@: no bundle at %@", record.identifier,
                    record.path);
            list_->removeBundle(record.path);
            scheduleWrite();
        } else if (!isDisabled(record.path) && admits(record.path)) {
            items_.add(record.path, record.position, Origin::Request);
        }
    }
}

void ItemRegistry::loadCommandLine(const std::vector<std::string>& bundles) {
    for (const std::string& bundle : bundles) {
        const std::string path = absolutePath(bundle);
        if (!isDisabled(path))
            items_.add(path, kLeftmostPosition, Origin::CommandLine);
    }
}

bool ItemRegistry::isDisabled(const std::string& path) {
    const ItemList::DisabledBundle* disabled = list_->findDisabled(path);
    if (!disabled)
        return false;
    if (versionAt(path) != disabled->version) {
        list_->enable(path);
        scheduleWrite();
        return false;
    }
    logLine("menu extra %@ at %@ is disabled: it crashed the menu bar (%@)", disabled->identifier,
            path, disabled->step);
    return true;
}

void ItemRegistry::scheduleWrite() {
    changed_ = true;
    if (!std::exchange(writeScheduled_, true))
        QTimer::singleShot(kWriteDelay, this, [this] { write(); });
}

// If writing fails, the next change and the destructor try again.
void ItemRegistry::write() {
    writeScheduled_ = false;
    if (changed_)
        changed_ = !list_->write();
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
    const std::string path = absolutePath(*file);
    if (!fileManager().isDirectory(path)) {
        logLine("cannot load menu extra: no bundle at %@", path);
        return number(MenuExtraStatus::FileNotFound);
    }
    // With Admit::System, the caller gets no error, and MenuCracker may be loaded before add().
    if (admission_.mode() != Admit::System && !admits(path))
        return number(MenuExtraStatus::Refused);
    QTimer::singleShot(0, this, [this, path, position] { add(path, position); });
    return number(MenuExtraStatus::NoError);
}

bool ItemRegistry::admits(const std::string& path) const {
    const auto cracker = items_.find(menuextras::kMenuCrackerID) ? Admission::Cracker::Loaded
                                                                 : Admission::Cracker::NotLoaded;
    const std::string reason = admission_.refusalReason(path, cracker);
    if (!reason.empty())
        logLine("menu extra at %@ declined: %@", path, reason);
    return reason.empty();
}

void ItemRegistry::add(const std::string& path, std::int32_t position) {
    if (!admits(path))
        return;
    if (list_->enable(path))
        scheduleWrite();
    const ItemRecord* record = items_.add(path, position, Origin::Request);
    // The item may already have been loaded from another path.
    if (record && record->path == path && list_->insertOrReplace(*record))
        scheduleWrite();
}

std::int32_t ItemRegistry::removeMenuExtra(MenuExtraReference reference, std::int32_t) {
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

} // namespace apps
