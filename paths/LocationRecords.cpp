#include "paths/LocationRecords.h"

#include "platform/base/NonCopyable.h"

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

// Locations are compared by their keys. Two records have the same key, a byte string, if and only
// if they have the same location. In a key, each value starts with a letter for its type, followed
// by its length if the length varies.

void appendValue(std::string& key, const PropertyList& value);

void appendNumber(std::string& key, char type, std::uint64_t number) {
    key += type;
    key.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

void appendBytes(std::string& key, char type, std::string_view bytes) {
    appendNumber(key, type, bytes.size());
    key += bytes;
}

void appendInteger(std::string& key, std::int64_t value) {
    appendNumber(key, 'i', static_cast<std::uint64_t>(value));
}

/// An integral real has the key of the integer, so that 1.0 equals 1.
void appendReal(std::string& key, double value) {
    constexpr double kTwo63 = 0x1p63;
    const bool isIntegral = std::trunc(value) == value;
    if (isIntegral && value >= -kTwo63 && value < kTwo63)
        return appendInteger(key, static_cast<std::int64_t>(value));
    if (isIntegral && value >= kTwo63 && value < 2 * kTwo63)
        return appendNumber(key, 'u', static_cast<std::uint64_t>(value));
    if (std::isnan(value)) // all NaNs are equal here
        value = std::numeric_limits<double>::quiet_NaN();
    appendNumber(key, 'r', std::bit_cast<std::uint64_t>(value));
}

/// Sorts the entries, because their order does not matter.
void appendDictionary(std::string& key, const Dictionary& dictionary) {
    std::vector<const Dictionary::Entry*> entries;
    for (const Dictionary::Entry& entry : dictionary)
        entries.push_back(&entry);
    std::ranges::sort(entries, {}, &Dictionary::Entry::key);
    appendNumber(key, 'm', entries.size());
    for (const Dictionary::Entry* entry : entries) {
        appendBytes(key, 'k', entry->key);
        appendValue(key, entry->value);
    }
}

void appendValue(std::string& key, const PropertyList& value) {
    switch (value.type()) {
    case PropertyList::Type::String:
        return appendBytes(key, 's', *value.string());
    case PropertyList::Type::Boolean:
        return appendInteger(key, *value.boolean() ? 1 : 0);
    case PropertyList::Type::Integer:
        if (const auto integer = value.integer())
            return appendInteger(key, *integer);
        return appendNumber(key, 'u', *value.unsignedInteger());
    case PropertyList::Type::Real:
        return appendReal(key, *value.real());
    case PropertyList::Type::Date:
        return appendNumber(key, 'd', static_cast<std::uint64_t>(value.date()->seconds));
    case PropertyList::Type::Data: {
        const auto& bytes = value.data()->bytes;
        return appendBytes(key, 'b', {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    case PropertyList::Type::Array:
        appendNumber(key, 'a', value.array()->size());
        for (const PropertyList& element : *value.array())
            appendValue(key, element);
        return;
    case PropertyList::Type::Dictionary:
        return appendDictionary(key, *value.dictionary());
    }
}

/// Appends the key of a record's location. Returns false, and appends nothing, if it has none.
bool appendKey(std::string& keys, const PropertyList& record) {
    const Array* fields = record.array();
    if (!fields || fields->size() < kIdentityFields)
        return false;
    for (const PropertyList& field : std::span(*fields).first(kIdentityFields))
        appendValue(keys, field);
    return true;
}

/// The locations of a list. All keys are in one string: allocating each would take longer than
/// computing them.
class LocationSet : platform::NonCopyable {
  public:
    explicit LocationSet(const Array& records) {
        std::vector<std::size_t> ends;
        ends.reserve(records.size());
        for (const PropertyList& record : records)
            if (appendKey(bytes_, record))
                ends.push_back(bytes_.size());
        keys_.reserve(ends.size());
        std::size_t start = 0;
        for (const std::size_t end : ends) {
            keys_.insert(std::string_view(bytes_).substr(start, end - start));
            start = end;
        }
    }

    bool contains(std::string_view key) const { return keys_.contains(key); }

  private:
    std::string bytes_;
    std::unordered_set<std::string_view> keys_; ///< views of bytes_
};

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

paths::MergedRecords paths::mergeRecords(Array list, Array cached) {
    paths::MergedRecords merged{std::move(list), 0};
    const LocationSet known(merged.records);
    merged.records.reserve(merged.records.size() + cached.size());
    std::string key;
    for (PropertyList& record : cached) {
        key.clear();
        if (appendKey(key, record) && known.contains(key)) {
            ++merged.duplicates;
            continue;
        }
        flagAsNet(record);
        merged.records.push_back(std::move(record));
    }
    return merged;
}

paths::SplitRecords paths::splitRecords(Array list) {
    paths::SplitRecords split;
    std::partition_copy(std::make_move_iterator(list.begin()), std::make_move_iterator(list.end()),
                        std::back_inserter(split.own), std::back_inserter(split.net),
                        [](const PropertyList& record) {
                            const Array* fields = record.array();
                            return !fields || fields->size() <= kNetFlag;
                        });
    return split;
}
