#include "paths/LocationRecords.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

using platform::PropertyList;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

namespace {

constexpr std::size_t kIdentityFields = 5;
constexpr std::size_t kNetFlag = 13;

// A location's key is a string of bytes; two locations are the same exactly when their keys are.
// Each value in it starts with a letter for its type and is as long as its first bytes say.

void appendKey(std::string& key, const PropertyList& value);

void append(std::string& key, char type, std::uint64_t number) {
    key += type;
    key.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

void append(std::string& key, char type, std::string_view bytes) {
    append(key, type, bytes.size());
    key += bytes;
}

/// An integer's key is the same whatever type holds it: 1, 1.0 and true are equal.
void append(std::string& key, double real) {
    constexpr double kTwo63 = 0x1p63;
    if (std::isnan(real))
        append(key, 'r', std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN()));
    else if (std::trunc(real) == real && real >= -kTwo63 && real < kTwo63)
        append(key, 'i', static_cast<std::uint64_t>(static_cast<std::int64_t>(real)));
    else if (std::trunc(real) == real && real >= kTwo63 && real < 2 * kTwo63)
        append(key, 'u', static_cast<std::uint64_t>(real));
    else
        append(key, 'r', std::bit_cast<std::uint64_t>(real));
}

void append(std::string& key, const Dictionary& dictionary) {
    std::vector<const Dictionary::Entry*> entries;
    for (const Dictionary::Entry& entry : dictionary)
        entries.push_back(&entry);
    std::ranges::sort(entries, {}, &Dictionary::Entry::key);
    append(key, 'm', entries.size());
    for (const Dictionary::Entry* entry : entries) {
        append(key, 'k', entry->key);
        appendKey(key, entry->value);
    }
}

void appendKey(std::string& key, const PropertyList& value) {
    switch (value.type()) {
    case PropertyList::Type::String:
        return append(key, 's', *value.string());
    case PropertyList::Type::Boolean:
        return append(key, 'i', *value.boolean() ? 1 : 0);
    case PropertyList::Type::Integer:
        if (const auto integer = value.integer())
            return append(key, 'i', static_cast<std::uint64_t>(*integer));
        return append(key, 'u', *value.unsignedInteger());
    case PropertyList::Type::Real:
        return append(key, *value.real());
    case PropertyList::Type::Date:
        return append(key, 'd', static_cast<std::uint64_t>(value.date()->seconds));
    case PropertyList::Type::Data: {
        const auto& bytes = value.data()->bytes;
        return append(key, 'b', {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    case PropertyList::Type::Array:
        append(key, 'a', value.array()->size());
        for (const PropertyList& element : *value.array())
            appendKey(key, element);
        return;
    case PropertyList::Type::Dictionary:
        return append(key, *value.dictionary());
    }
}

/// Sets @p key to the key of @p record. Returns false for a record without a location.
bool makeKey(std::string& key, const PropertyList& record) {
    const Array* fields = record.array();
    if (!fields || fields->size() < kIdentityFields)
        return false;
    key.clear();
    for (const PropertyList& field : std::span(*fields).first(kIdentityFields))
        appendKey(key, field);
    return true;
}

std::unordered_set<std::string> locationKeys(const Array& records) {
    std::unordered_set<std::string> keys;
    keys.reserve(records.size());
    std::string key;
    for (const PropertyList& record : records)
        if (makeKey(key, record))
            keys.insert(key);
    return keys;
}

void flagAsNet(PropertyList& record) {
    Array* fields = record.array();
    if (!fields)
        return;
    if (fields->size() <= kNetFlag) {
        fields->reserve(kNetFlag + 1);
        fields->resize(kNetFlag);
        fields->push_back(true);
    } else {
        (*fields)[kNetFlag] = true;
    }
}

} // namespace

MergedRecords mergeRecords(Array list, Array cached) {
    MergedRecords merged{std::move(list), 0};
    const auto known = locationKeys(merged.records);
    std::string key;
    for (PropertyList& record : cached) {
        if (makeKey(key, record) && known.contains(key)) {
            ++merged.duplicates;
            continue;
        }
        flagAsNet(record);
        merged.records.push_back(std::move(record));
    }
    return merged;
}

SplitRecords splitRecords(Array list) {
    SplitRecords split;
    std::partition_copy(std::make_move_iterator(list.begin()), std::make_move_iterator(list.end()),
                        std::back_inserter(split.own), std::back_inserter(split.net),
                        [](const PropertyList& record) {
                            const Array* fields = record.array();
                            return !fields || fields->size() <= kNetFlag;
                        });
    return split;
}
