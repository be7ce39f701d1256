#include "apps/shared/ItemList.h"

#include "apps/shared/FileLock.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"
#include "platform/values/PropertyList.h"

#include <algorithm>
#include <optional>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr const char* kUnreadableSuffix = ".unreadable";
constexpr const char* kLockSuffix = ".lock";
// Changes are kept while the file cannot be written. The oldest ones are dropped.
constexpr std::size_t kMaximumPending = 100;
constexpr const char* kItems = "Items";
constexpr const char* kDisabled = "Left Out";
constexpr const char* kIdentifier = "Identifier";
constexpr const char* kPath = "Path";
constexpr const char* kPosition = "Position";
constexpr const char* kVersion = "Version";
constexpr const char* kStep = "Step";
constexpr const char* kFailure = "Failure";

/// Returns std::nullopt if there is no number or it is out of range.
std::optional<std::int32_t> positionOf(const PropertyList& row) {
    const PropertyList* value = row.find(kPosition);
    if (!value || !value->integer() || !std::in_range<std::int32_t>(*value->integer()))
        return std::nullopt;
    return static_cast<std::int32_t>(*value->integer());
}

/// Skips a row that cannot be serialized, for example because of its file name: it would prevent
/// the whole list from being written.
void append(PropertyList::Array& rows, PropertyList row) {
    if (propertyLists().serialize(row))
        rows.push_back(std::move(row));
    else
        logLine("cannot store menu extra at %@: a property list cannot represent it",
                row.stringAt(kPath));
}

const PropertyList::Array* array(const PropertyList& root, const char* key) {
    const PropertyList* value = root.find(key);
    return value ? value->array() : nullptr;
}

} // namespace

ItemList::ItemList(std::string file, std::string ownItemsFolder)
    : file_(std::move(file)), ownItemsFolder_(std::move(ownItemsFolder)) {}

std::string ItemList::lockFile() const {
    return file_ + kLockSuffix;
}

bool ItemList::read() {
    if (!fileManager().fileExists(file_))
        return false;
    const auto file = fileManager().readFile(file_, kMaximumBytes);
    const auto list = file ? propertyLists().parse(*file.contents)
                           : PropertyListResult{std::nullopt, {0, 0, file.reason}};
    const auto* items = list ? array(*list.value, kItems) : nullptr;
    if (!items) {
        logLine("cannot read the menu bar's items from %@: %@", file_,
                list ? "it has no array Items" : list.error.text());
        moveUnreadableFile();
        return false;
    }
    items_.clear();
    byIdentifier_.clear();
    disabled_.clear();
    for (const PropertyList& row : *items)
        readItem(row);
    if (const auto* disabled = array(*list.value, kDisabled)) {
        for (const PropertyList& row : *disabled)
            readDisabled(row);
    }
    return true;
}

// Otherwise the next write would replace a file that the user may be able to repair.
void ItemList::moveUnreadableFile() const {
    const std::string newPath = file_ + kUnreadableSuffix;
    fileManager().removeItem(newPath);
    if (fileManager().moveFile(file_, newPath))
        logLine("kept the unreadable list of the menu bar's items as %@", newPath);
}

void ItemList::readItem(const PropertyList& row) {
    const auto position = positionOf(row);
    ItemRecord item{std::string(row.stringAt(kIdentifier)), resolvedPath(row.stringAt(kPath)),
                    position.value_or(0), "", Origin::Request};
    if (!position || item.identifier.empty() || item.path.empty())
        logLine("skipped a menu bar item without Identifier, Path or Position in %@", file_);
    else
        insert(std::move(item));
}

void ItemList::readDisabled(const PropertyList& row) {
    DisabledBundle bundle{std::string(row.stringAt(kIdentifier)), resolvedPath(row.stringAt(kPath)),
                          std::string(row.stringAt(kVersion)), std::string(row.stringAt(kStep)),
                          std::string(row.stringAt(kFailure))};
    if (bundle.path.empty())
        logLine("skipped a disabled bundle without Path in %@", file_);
    else
        disable(std::move(bundle));
}

bool ItemList::write() const {
    PropertyList::Array items;
    for (const auto& [position, item] : items_)
        append(items, PropertyList::Dictionary{{kIdentifier, item.identifier},
                                               {kPath, storedPath(item.path)},
                                               {kPosition, std::int64_t{position}}});
    PropertyList::Array disabled;
    for (const auto& [path, bundle] : disabled_)
        append(disabled, PropertyList::Dictionary{{kIdentifier, bundle.identifier},
                                                  {kPath, storedPath(path)},
                                                  {kVersion, bundle.version},
                                                  {kStep, bundle.step},
                                                  {kFailure, bundle.failure}});
    const auto bytes = propertyLists().serialize(PropertyList(PropertyList::Dictionary{
        {kItems, PropertyList(std::move(items))}, {kDisabled, PropertyList(std::move(disabled))}}));
    if (bytes && bytes->size() > kMaximumBytes) {
        logLine("cannot write the menu bar's items to %@: they need more than %d bytes", file_,
                static_cast<int>(kMaximumBytes));
        return false;
    }
    const bool written = bytes && fileManager().writeFileAtomically(file_, *bytes);
    if (!written)
        logLine("cannot write the menu bar's items to %@", file_);
    return written;
}

bool ItemList::change(Change change) {
    pending_.push_back(std::move(change));
    if (pending_.size() > kMaximumPending)
        pending_.erase(pending_.begin());
    return flush();
}

void ItemList::changeLater(Change change) {
    change(*this);
    pending_.push_back(std::move(change));
}

bool ItemList::flush() {
    if (pending_.empty())
        return true;
    const FileLock lock(lockFile());
    bool changed = !read(); // then what this object holds may never have been written
    for (const Change& change : pending_)
        changed = change(*this) || changed;
    if (changed && !write())
        return false;
    pending_.clear();
    return true;
}

std::string ItemList::storedPath(const std::string& path) const {
    return deletingLastPathComponent(path) == ownItemsFolder_ ? lastPathComponent(path) : path;
}

std::string ItemList::resolvedPath(std::string_view storedPath) const {
    const bool isName = !storedPath.empty() && storedPath.find('/') == std::string_view::npos;
    return isName ? appendingPathComponent(ownItemsFolder_, storedPath) : std::string(storedPath);
}

std::vector<ItemRecord> ItemList::items() const {
    std::vector<ItemRecord> items;
    items.reserve(items_.size());
    for (const auto& [position, item] : items_)
        items.push_back(item);
    return items;
}

const ItemRecord* ItemList::findItem(const std::string& identifier) const {
    const auto found = byIdentifier_.find(identifier);
    return found == byIdentifier_.end() ? nullptr : &found->second->second;
}

bool ItemList::insert(ItemRecord item) {
    if (byIdentifier_.contains(item.identifier))
        return false;
    const std::int32_t position = item.position;
    const auto inserted = items_.emplace(position, std::move(item));
    byIdentifier_.emplace(inserted->second.identifier, inserted);
    return true;
}

void ItemList::insertOrReplace(ItemRecord item) {
    removeItem(item.identifier);
    insert(std::move(item));
}

bool ItemList::removeItem(const std::string& identifier) {
    const auto found = byIdentifier_.find(identifier);
    if (found == byIdentifier_.end())
        return false;
    items_.erase(found->second);
    byIdentifier_.erase(found);
    return true;
}

const ItemList::DisabledBundle* ItemList::findDisabled(std::string_view path) const {
    const auto found = disabled_.find(path);
    return found == disabled_.end() ? nullptr : &found->second;
}

void ItemList::disable(DisabledBundle bundle) {
    std::string path = bundle.path;
    disabled_.insert_or_assign(std::move(path), std::move(bundle));
}

bool ItemList::enable(std::string_view path) {
    const auto found = disabled_.find(path);
    if (found == disabled_.end())
        return false;
    disabled_.erase(found);
    return true;
}

std::string ItemList::reason(const DisabledBundle& bundle) {
    if (bundle.step == kTurnedOff)
        return "it was turned off";
    const char* what = bundle.failure == kHang   ? "it stopped responding"
                       : bundle.failure == kExit ? "it ended the menu bar"
                                                 : "it crashed the menu bar";
    return what + (" (" + bundle.step + ")");
}

} // namespace apps
