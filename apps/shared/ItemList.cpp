#include "apps/shared/ItemList.h"

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
constexpr const char* kItems = "Items";
constexpr const char* kDisabled = "Left Out";
constexpr const char* kIdentifier = "Identifier";
constexpr const char* kPath = "Path";
constexpr const char* kPosition = "Position";
constexpr const char* kVersion = "Version";
constexpr const char* kStep = "Step";

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

bool ItemList::read() {
    if (!fileManager().fileExists(file_))
        return false;
    const auto list = propertyLists().read(file_);
    const auto* items = list ? array(*list.value, kItems) : nullptr;
    if (!items) {
        logLine("cannot read the menu bar's items from %@: %@", file_,
                list ? "it has no array Items" : list.error.text());
        moveUnreadableFile();
        return false;
    }
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
                          std::string(row.stringAt(kVersion)), std::string(row.stringAt(kStep))};
    if (bundle.path.empty())
        logLine("skipped a disabled bundle without Path in %@", file_);
    else
        disable(std::move(bundle));
}

bool ItemList::write() const {
    PropertyList::Array items;
    for (const ItemRecord& item : items_)
        append(items, PropertyList::Dictionary{{kIdentifier, item.identifier},
                                               {kPath, storedPath(item.path)},
                                               {kPosition, std::int64_t{item.position}}});
    PropertyList::Array disabled;
    for (const DisabledBundle& bundle : disabled_)
        append(disabled, PropertyList::Dictionary{{kIdentifier, bundle.identifier},
                                                  {kPath, storedPath(bundle.path)},
                                                  {kVersion, bundle.version},
                                                  {kStep, bundle.step}});
    const auto bytes = propertyLists().serialize(PropertyList(PropertyList::Dictionary{
        {kItems, PropertyList(std::move(items))}, {kDisabled, PropertyList(std::move(disabled))}}));
    const bool written = bytes && fileManager().writeFileAtomically(file_, *bytes);
    if (!written)
        logLine("cannot write the menu bar's items to %@", file_);
    return written;
}

std::string ItemList::storedPath(const std::string& path) const {
    return deletingLastPathComponent(path) == ownItemsFolder_ ? lastPathComponent(path) : path;
}

std::string ItemList::resolvedPath(std::string_view storedPath) const {
    const bool isName = !storedPath.empty() && storedPath.find('/') == std::string_view::npos;
    return isName ? appendingPathComponent(ownItemsFolder_, storedPath) : std::string(storedPath);
}

bool ItemList::insert(ItemRecord item) {
    if (std::any_of(items_.begin(), items_.end(),
                    [&](const ItemRecord& other) { return other.identifier == item.identifier; }))
        return false;
    const auto next = std::find_if(items_.begin(), items_.end(), [&](const ItemRecord& other) {
        return other.position > item.position;
    });
    items_.insert(next, std::move(item));
    return true;
}

bool ItemList::insertOrReplace(ItemRecord item) {
    std::erase_if(items_, [&](const ItemRecord& other) {
        return other.identifier == item.identifier && other.path != item.path;
    });
    return insert(std::move(item));
}

bool ItemList::removeItem(std::string_view identifier) {
    return std::erase_if(items_,
                         [&](const ItemRecord& item) { return item.identifier == identifier; }) > 0;
}

void ItemList::removeBundle(std::string_view path) {
    enable(path);
    std::erase_if(items_, [&](const ItemRecord& item) { return item.path == path; });
}

const ItemList::DisabledBundle* ItemList::findDisabled(std::string_view path) const {
    const auto found =
        std::find_if(disabled_.begin(), disabled_.end(),
                     [&](const DisabledBundle& bundle) { return bundle.path == path; });
    return found == disabled_.end() ? nullptr : &*found;
}

void ItemList::disable(DisabledBundle bundle) {
    enable(bundle.path);
    disabled_.push_back(std::move(bundle));
}

bool ItemList::enable(std::string_view path) {
    return std::erase_if(disabled_,
                         [&](const DisabledBundle& bundle) { return bundle.path == path; }) > 0;
}

} // namespace apps
