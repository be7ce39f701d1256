#include "paths/LocationRecords.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

using platform::PropertyList;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;

namespace {

constexpr std::size_t kIdentityFields = 5;
constexpr std::size_t kNetFlag = 13;

/// A number as what it is worth: of two with the same worth kind and bits are the same.
struct Number {
    enum class Kind : std::uint8_t { Integer, LargeInteger, Real } kind;
    std::uint64_t bits;
    friend bool operator==(const Number&, const Number&) = default;
};

Number numberOf(double value) {
    constexpr double kTwo63 = 0x1p63;
    if (std::isnan(value))
        return {Number::Kind::Real,
                std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN())};
    if (std::trunc(value) == value && value >= -kTwo63 && value < kTwo63)
        return {Number::Kind::Integer,
                static_cast<std::uint64_t>(static_cast<std::int64_t>(value))};
    if (std::trunc(value) == value && value >= kTwo63 && value < 2 * kTwo63)
        return {Number::Kind::LargeInteger, static_cast<std::uint64_t>(value)};
    return {Number::Kind::Real, std::bit_cast<std::uint64_t>(value)};
}

std::optional<Number> numberOf(const PropertyList& value) {
    switch (value.type()) {
    case PropertyList::Type::Boolean:
        return Number{Number::Kind::Integer, *value.boolean() ? 1U : 0U};
    case PropertyList::Type::Integer:
        if (const auto integer = value.integer())
            return Number{Number::Kind::Integer, static_cast<std::uint64_t>(*integer)};
        return Number{Number::Kind::LargeInteger, *value.unsignedInteger()};
    case PropertyList::Type::Real:
        return numberOf(*value.real());
    default:
        return std::nullopt;
    }
}

std::vector<const Dictionary::Entry*> sortedEntries(const Dictionary& dictionary) {
    std::vector<const Dictionary::Entry*> entries;
    for (const Dictionary::Entry& entry : dictionary)
        entries.push_back(&entry);
    std::ranges::sort(entries, {}, &Dictionary::Entry::key);
    return entries;
}

bool sameValue(const PropertyList& left, const PropertyList& right) {
    if (const auto number = numberOf(left))
        return number == numberOf(right);
    if (left.type() != right.type())
        return false;
    if (const Array* array = left.array())
        return std::ranges::equal(*array, *right.array(), sameValue);
    const Dictionary* dictionary = left.dictionary();
    if (!dictionary)
        return left == right;
    return std::ranges::equal(sortedEntries(*dictionary), sortedEntries(*right.dictionary()),
                              [](const auto* one, const auto* other) {
                                  return one->key == other->key &&
                                         sameValue(one->value, other->value);
                              });
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t next) {
    hash = (hash ^ next) * 0x9e37'79b9'7f4a'7c15;
    return hash ^ (hash >> 32);
}

std::uint64_t hashOfBytes(std::string_view bytes) {
    return std::hash<std::string_view>()(bytes);
}

/// The same for values that sameValue holds for the same.
std::uint64_t hashOf(const PropertyList& value) {
    if (const auto number = numberOf(value))
        return mixed(number->bits, static_cast<std::uint64_t>(number->kind));
    if (const auto text = value.string())
        return hashOfBytes(*text);
    if (const auto date = value.date())
        return mixed(static_cast<std::uint64_t>(date->seconds), 0);
    if (const auto* data = value.data())
        return hashOfBytes({reinterpret_cast<const char*>(data->bytes.data()), data->bytes.size()});
    std::uint64_t hash = 0;
    if (const Array* array = value.array()) {
        for (const PropertyList& element : *array)
            hash = mixed(hash, hashOf(element));
        return hash;
    }
    for (const auto& [key, element] : *value.dictionary())
        hash += mixed(hashOfBytes(key), hashOf(element)); // in whatever order
    return hash;
}

/// The identity fields; null for what has none.
const PropertyList* identity(const PropertyList& record) {
    const Array* fields = record.array();
    return fields && fields->size() >= kIdentityFields ? fields->data() : nullptr;
}

struct HashedRecord {
    const PropertyList* fields; ///< the identity; null for a record without one
    std::uint64_t hash;
};

std::vector<HashedRecord> hashed(const Array& records) {
    std::vector<HashedRecord> result;
    result.reserve(records.size());
    for (const PropertyList& record : records) {
        const PropertyList* fields = identity(record);
        std::uint64_t hash = 0;
        for (std::size_t i = 0; fields && i < kIdentityFields; ++i)
            hash = mixed(hash, hashOf(fields[i]));
        result.push_back({fields, hash});
    }
    return result;
}

/// The identities of a list, which outlives this. An open hash table, at most half full. Looking
/// into a large one means waiting for memory, so it is asked for in advance.
class Identities {
  public:
    explicit Identities(const Array& records) : slots_(std::bit_ceil(2 * records.size() + 1)) {
        forEach(hashed(records), [this](const HashedRecord& record, std::size_t place) {
            if (record.fields)
                slots_[place] = record;
        });
    }
    /// For each of @p records, in order, whether its identity is among these.
    std::vector<bool> contain(const Array& records) const {
        std::vector<bool> result;
        result.reserve(records.size());
        forEach(hashed(records), [&](const HashedRecord& record, std::size_t place) {
            result.push_back(record.fields && slots_[place].fields);
        });
        return result;
    }

  private:
    /// Calls @p work with each record and the slot where it is, or else would be.
    template <class Work>
    void forEach(const std::vector<HashedRecord>& records, Work work) const {
        constexpr std::size_t kAhead = 16;
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (i + kAhead < records.size())
                __builtin_prefetch(&slots_[startOf(records[i + kAhead])]);
            work(records[i], placeOf(records[i]));
        }
    }
    std::size_t startOf(const HashedRecord& record) const {
        return static_cast<std::size_t>(record.hash) & (slots_.size() - 1);
    }
    std::size_t placeOf(const HashedRecord& record) const {
        std::size_t place = startOf(record);
        while (record.fields && slots_[place].fields && !same(record, slots_[place]))
            place = (place + 1) & (slots_.size() - 1);
        return place;
    }
    static bool same(const HashedRecord& left, const HashedRecord& right) {
        return left.hash == right.hash &&
               std::equal(left.fields, left.fields + kIdentityFields, right.fields, sameValue);
    }

    std::vector<HashedRecord> slots_; ///< a power of two; without fields where nothing is
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

MergedRecords mergeRecords(Array list, Array cached) {
    MergedRecords merged{std::move(list), 0};
    const std::vector<bool> known = Identities(merged.records).contain(cached);
    for (std::size_t i = 0; i < cached.size(); ++i) {
        if (known[i]) {
            ++merged.duplicates;
            continue;
        }
        flagAsNet(cached[i]);
        merged.records.push_back(std::move(cached[i]));
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
