#include "apps/menubar/ItemKeeper.h"

#include "apps/menubar/MenuBar.h"
#include "apps/menubar/Places.h"
#include "apps/menubar/StepJournal.h"
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
constexpr std::int32_t kLastPosition = 999; // left of everything else
// Flushing to the disk may take longer than all the rest: the new item is drawn first.
constexpr std::chrono::milliseconds kWriteDelay{20};
constexpr std::chrono::milliseconds kBetweenLooks{5};

std::int32_t number(MenuExtraStatus status) {
    return static_cast<std::int32_t>(status);
}

std::string versionAt(const std::string& path) {
    const auto bundle = Bundle::bundleWithPath(path);
    return bundle ? bundle->version().value_or("") : "";
}

} // namespace

ItemKeeper::ItemKeeper(MenuBar& menuBar, StepJournal& journal, Admission admission)
    : menuBar_(menuBar), journal_(journal), admission_(std::move(admission)) {}

ItemKeeper::~ItemKeeper() {
    write();
    menuBar_.unloadAll(); // while the items can still ask for one another
}

// From one run to the next.

void ItemKeeper::start(const std::vector<std::string>& commandLine) {
    paths::makeHomeFolders(fileManager());
    const std::string folder = HalvexFilePaths::ovxGetUsersHalvexProSupportDir();
    list_ = std::make_unique<ItemList>(appendingPathComponent(folder, ItemList::kFileName),
                                       admission_.ownItemsFolder());
    journal_.open(appendingPathComponent(folder, kJournalFile));
    if (!list_->read())
        list_->insert({menuextras::kSystemClockID,
                       appendingPathComponent(admission_.ownItemsFolder(), kOwnClock), 0, ""});
    noteCrash();
    restore();
    for (const std::string& bundle : commandLine) {
        const std::string path = absolutePath(bundle);
        if (!isLeftOut(path))
            menuBar_.add(path, kLastPosition, Origin::CommandLine);
    }
}

// Written at once: what crashes the bar again would otherwise not be known to have done so before.
void ItemKeeper::noteCrash() {
    const auto note = journal_.takeInterrupted();
    if (!note)
        return;
    const ItemRecord& item = note->item;
    if (item.origin == Origin::Request)
        list_->insert(item);
    list_->leaveOut({item.identifier, item.path, item.version, note->step});
    list_->write();
}

void ItemKeeper::restore() {
    std::vector<ItemRecord> items = list_->items();
    // Others may need it to be admitted.
    std::stable_partition(items.begin(), items.end(), [](const ItemRecord& item) {
        return item.identifier == menuextras::kMenuCrackerID;
    });
    for (const ItemRecord& item : items) {
        if (!fileManager().isDirectory(item.path)) {
            logLine("menu extra %@ is gone from %@", item.identifier, item.path);
            list_->forget(item.path);
            writeSoon();
        } else if (!isLeftOut(item.path) && admits(item.path)) {
            menuBar_.add(item.path, item.position, Origin::Request);
        }
    }
}

bool ItemKeeper::isLeftOut(const std::string& path) {
    const ItemList::LeftOut* leftOut = list_->find(path);
    if (!leftOut)
        return false;
    if (versionAt(path) != leftOut->version) {
        list_->forgive(path);
        writeSoon();
        return false;
    }
    logLine("menu extra %@ at %@ is left out: it crashed the menu bar (%@)", leftOut->identifier,
            path, leftOut->step);
    return true;
}

void ItemKeeper::writeSoon() {
    changed_ = true;
    if (!std::exchange(writesSoon_, true))
        QTimer::singleShot(kWriteDelay, &menuBar_, [this] { write(); });
}

/// What cannot be written is tried again with the next change, and at the end.
void ItemKeeper::write() {
    writesSoon_ = false;
    if (changed_)
        changed_ = !list_->write();
}

// What is asked for.

std::int32_t ItemKeeper::getMenuExtra(const std::string& identifier,
                                      MenuExtraReference& reference) {
    const auto found = menuBar_.find(identifier);
    reference = found.value_or(0);
    return number(found ? MenuExtraStatus::NoError : MenuExtraStatus::NotLoaded);
}

std::int32_t ItemKeeper::addMenuExtra(const std::string& url, std::int32_t position, std::int32_t,
                                      std::int32_t, std::int32_t, std::int32_t) {
    const auto file = pathOfFileURL(url);
    if (!file) {
        logLine("no menu extra loaded: %@ is no file URL", url);
        return number(MenuExtraStatus::BadParameter);
    }
    const std::string path = absolutePath(*file);
    if (!fileManager().isDirectory(path)) {
        logLine("no menu extra loaded: there is no bundle at %@", path);
        return number(MenuExtraStatus::FileNotFound);
    }
    // The system does not tell whom it declines, and who is admitted there may change until the
    // load.
    if (admission_.mode() != Admit::System && !admits(path))
        return number(MenuExtraStatus::Refused);
    QTimer::singleShot(0, &menuBar_, [this, path, position] { add(path, position); });
    return number(MenuExtraStatus::NoError);
}

bool ItemKeeper::admits(const std::string& path) const {
    const auto cracker = menuBar_.find(menuextras::kMenuCrackerID) ? Admission::Cracker::Loaded
                                                                   : Admission::Cracker::NotLoaded;
    const std::string reason = admission_.reasonAgainst(path, cracker);
    if (!reason.empty())
        logLine("menu extra at %@ declined: %@", path, reason);
    return reason.empty();
}

void ItemKeeper::add(const std::string& path, std::int32_t position) {
    if (!admits(path))
        return;
    if (list_->forgive(path))
        writeSoon();
    if (menuBar_.add(path, position, Origin::Request) != MenuExtraStatus::NoError)
        return;
    for (const ItemRecord& item : menuBar_.records()) {
        if (item.path == path && list_->put(item))
            writeSoon();
    }
}

std::int32_t ItemKeeper::removeMenuExtra(MenuExtraReference reference, std::int32_t) {
    if (currentOwner().empty())
        return number(remove(reference));
    removeLater(reference);
    return number(MenuExtraStatus::NoError);
}

// Not before the items' code has come to its end: some of it, an animation, runs a loop of its own.
void ItemKeeper::removeLater(MenuExtraReference reference) {
    QTimer::singleShot(kBetweenLooks, &menuBar_, [this, reference] {
        if (currentOwner().empty())
            remove(reference);
        else
            removeLater(reference);
    });
}

MenuExtraStatus ItemKeeper::remove(MenuExtraReference reference) {
    const std::string identifier = menuBar_.identifierOf(reference);
    const MenuExtraStatus status = menuBar_.remove(reference);
    if (status == MenuExtraStatus::NoError && list_->erase(identifier))
        writeSoon();
    return status;
}

} // namespace apps
