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

constexpr const char* kAside = ".unreadable";
constexpr const char* kItems = "Items";
constexpr const char* kLeftOut = "Left Out";
constexpr const char* kIdentifier = "Identifier";
constexpr const char* kPath = "Path";
constexpr const char* kPosition = "Position";
constexpr const char* kVersion = "Version";
constexpr const char* kStep = "Step";

/// Nothing when there is none that fits.
std::optional<std::int32_t> position(const PropertyList& row) {
    const PropertyList* value = row.find(kPosition);
    if (!value || !value->integer() || !std::in_range<std::int32_t>(*value->integer()))
        return std::nullopt;
    return static_cast<std::int32_t>(*value->integer());
}

/// A row that no property list can hold, for its odd file name, would spoil the whole list.
void append(PropertyList::Array& rows, PropertyList row) {
    if (propertyLists().serialize(row))
        rows.push_back(std::move(row));
    else
        logLine("the menu extra at %@ cannot be remembered", row.stringAt(kPath));
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
        logLine("the menu bar's items cannot be read from %@: %@", file_,
                list ? "there is no array of Items" : list.error.text());
        keepAside();
        return false;
    }
    for (const PropertyList& row : *items)
        readItem(row);
    if (const auto* leftOut = array(*list.value, kLeftOut)) {
        for (const PropertyList& row : *leftOut)
            readLeftOut(row);
    }
    return true;
}

/// The next list must not take the place of one that somebody can mend.
void ItemList::keepAside() const {
    const std::string place = file_ + kAside;
    fileManager().removeItem(place);
    if (fileManager().moveFile(file_, place))
        logLine("they are kept in %@", place);
}

void ItemList::readItem(const PropertyList& row) {
    const auto place = position(row);
    ItemRecord item{std::string(row.stringAt(kIdentifier)), readPath(row.stringAt(kPath)),
                    place.value_or(0), "", Origin::Request};
    if (!place || item.identifier.empty() || item.path.empty())
        logLine("a row without Identifier, Path or Position is passed over in %@", file_);
    else
        insert(std::move(item));
}

void ItemList::readLeftOut(const PropertyList& row) {
    LeftOut bundle{std::string(row.stringAt(kIdentifier)), readPath(row.stringAt(kPath)),
                   std::string(row.stringAt(kVersion)), std::string(row.stringAt(kStep))};
    if (bundle.path.empty())
        logLine("a row without Path is passed over in %@", file_);
    else
        leaveOut(std::move(bundle));
}

bool ItemList::write() const {
    PropertyList::Array items;
    for (const ItemRecord& item : items_)
        append(items, PropertyList::Dictionary{{kIdentifier, item.identifier},
                                               {kPath, writtenPath(item.path)},
                                               {kPosition, std::int64_t{item.position}}});
    PropertyList::Array leftOut;
    for (const LeftOut& bundle : leftOut_)
        append(leftOut, PropertyList::Dictionary{{kIdentifier, bundle.identifier},
                                                 {kPath, writtenPath(bundle.path)},
                                                 {kVersion, bundle.version},
                                                 {kStep, bundle.step}});
    const auto bytes = propertyLists().serialize(PropertyList(PropertyList::Dictionary{
        {kItems, PropertyList(std::move(items))}, {kLeftOut, PropertyList(std::move(leftOut))}}));
    const bool written = bytes && fileManager().writeFileAtomically(file_, *bytes);
    if (!written)
        logLine("the menu bar's items cannot be written to %@", file_);
    return written;
}

std::string ItemList::writtenPath(const std::string& path) const {
    return deletingLastPathComponent(path) == ownItemsFolder_ ? lastPathComponent(path) : path;
}

std::string ItemList::readPath(std::string_view path) const {
    const bool isName = !path.empty() && path.find('/') == std::string_view::npos;
    return isName ? appendingPathComponent(ownItemsFolder_, path) : std::string(path);
}

bool ItemList::insert(ItemRecord item) {
    if (std::any_of(items_.begin(), items_.end(),
                    [&](const ItemRecord& other) { return other.identifier == item.identifier; }))
        return false;
    const auto place = std::find_if(items_.begin(), items_.end(), [&](const ItemRecord& other) {
        return other.position > item.position;
    });
    items_.insert(place, std::move(item));
    return true;
}

bool ItemList::put(ItemRecord item) {
    std::erase_if(items_, [&](const ItemRecord& other) {
        return other.identifier == item.identifier && other.path != item.path;
    });
    return insert(std::move(item));
}

bool ItemList::erase(std::string_view identifier) {
    return std::erase_if(items_,
                         [&](const ItemRecord& item) { return item.identifier == identifier; }) > 0;
}

const ItemList::LeftOut* ItemList::find(std::string_view path) const {
    const auto found = std::find_if(leftOut_.begin(), leftOut_.end(),
                                    [&](const LeftOut& bundle) { return bundle.path == path; });
    return found == leftOut_.end() ? nullptr : &*found;
}

void ItemList::leaveOut(LeftOut bundle) {
    forgive(bundle.path);
    leftOut_.push_back(std::move(bundle));
}

bool ItemList::forgive(std::string_view path) {
    return std::erase_if(leftOut_, [&](const LeftOut& bundle) { return bundle.path == path; }) > 0;
}

void ItemList::forget(std::string_view path) {
    forgive(path);
    std::erase_if(items_, [&](const ItemRecord& item) { return item.path == path; });
}

} // namespace apps
