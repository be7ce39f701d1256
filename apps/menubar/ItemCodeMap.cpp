#include "apps/menubar/ItemCodeMap.h"

#include <memory>

namespace apps {

ItemCodeMap::~ItemCodeMap() {
    for (Entry* entry = first_; entry;) {
        const std::unique_ptr<Entry> owned(entry);
        entry = entry->next_;
    }
}

void ItemCodeMap::add(const std::string& identifier, const std::string& data) {
    const Entry* known = latest(identifier);
    if (known && known->data == data)
        return;
    auto entry = std::make_unique<Entry>();
    entry->identifier = identifier;
    entry->data = data;
    entry->next_ = first_;
    first_ = entry.release();
}

void ItemCodeMap::setCode(std::string_view identifier, platform::AddressRange addresses) {
    // The addresses may have belonged to code that has been unloaded since.
    for (Entry* entry = first_; entry; entry = entry->next_)
        if (entry->begin_ < addresses.end && addresses.begin < entry->end_)
            entry->begin_ = entry->end_ = 0;
    if (Entry* entry = latest(identifier)) {
        entry->begin_ = addresses.begin;
        entry->end_ = addresses.end;
    }
}

const ItemCodeMap::Entry* ItemCodeMap::find(std::uintptr_t address, std::string_view owner) const {
    for (const Entry* entry = first_; entry; entry = entry->next_)
        if (entry->begin_ <= address && address < entry->end_)
            return entry;
    return owner.empty() ? nullptr : latest(owner);
}

ItemCodeMap::Entry* ItemCodeMap::latest(std::string_view identifier) const {
    Entry* entry = first_;
    while (entry && entry->identifier != identifier)
        entry = entry->next_;
    return entry;
}

} // namespace apps
