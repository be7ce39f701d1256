#include "paths/LocationRecords.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

using platform::PropertyList;
using Array = PropertyList::Array;

namespace {

// Returns a PropertyList: {array} would copy an Array instead of nesting it.
PropertyList record(PropertyList first, std::size_t size = 13) {
    Array fields(size, "r");
    fields.front() = std::move(first);
    return fields;
}

/// The record as it is appended to the list.
PropertyList flagged(const PropertyList& original) {
    Array fields = *original.array();
    while (fields.size() < 14)
        fields.emplace_back("");
    fields[13] = true;
    return fields;
}

TEST(LocationRecords, AreComparedByValueNotByType) {
    const std::int64_t two53 = std::int64_t{1} << 53;
    const auto two63 = std::uint64_t{1} << 63;
    const auto maximum = std::numeric_limits<std::uint64_t>::max();
    using Dictionary = PropertyList::Dictionary;
    // Values in the same row are equal; values in different rows are not.
    const std::vector<Array> rows = {
        {true, 1, 1.0},
        {false, -0.0},
        {-1, -1.0},
        {maximum},
        {0x1p64},
        {two53, 0x1p53},
        {two53 + 1},
        {two63, 0x1p63},
        {two63 + 1},
        {std::numeric_limits<std::int64_t>::min(), -0x1p63},
        {std::nan(""), -std::nan("")},
        {"1"},
        {"\u00e9"},
        {"e\u0301"},
        {std::string("a\0b", 3)},
        {std::string("a\0c", 3)},
        {PropertyList::Date{1}},
        {PropertyList::Data{{'1'}}, PropertyList::Data{{'1'}}},
        {Array{1, "a"}, Array{1.0, "a"}},
        {Array{"a", 1}},
        {Dictionary{{"a", 1}, {"b", true}}, Dictionary{{"b", 1.0}, {"a", true}}},
        {Dictionary{{"a", 1}}},
    };
    for (const Array& row : rows)
        for (const Array& other : rows)
            for (const PropertyList& value : row) {
                Array cached;
                for (const PropertyList& element : other)
                    cached.push_back(record(element));
                const std::size_t expected = &row == &other ? row.size() : 0;
                EXPECT_EQ(paths::mergeRecords({record(value)}, cached).duplicates, expected)
                    << &row - rows.data() << " and " << &other - rows.data();
            }
}

TEST(LocationRecords, MergeAppendsTheCachedRecordsThatTheListLacks) {
    const PropertyList a = record("a");
    const PropertyList b = record("b");
    const PropertyList c = record("c");
    const PropertyList shortOne = record("s", 4);
    const PropertyList empty = Array();
    const PropertyList dictionary = PropertyList::Dictionary();
    const auto differingAt = [&](std::size_t position, const char* text = "other") {
        PropertyList fields = a;
        (*fields.array())[position] = text;
        return fields;
    };
    const PropertyList asr = record("asr"), rsr = differingAt(1, "rsr");
    Array variants, lengths;
    for (std::size_t position = 0; position < 5; ++position)
        variants.push_back(differingAt(position));
    for (const std::size_t size : {5U, 12U, 13U, 14U, 16U})
        lengths.push_back(record("l", size));
    Array variantsAndA = variants, flaggedLengths = lengths;
    variantsAndA.push_back(flagged(a));
    std::ranges::transform(lengths, flaggedLengths.begin(), flagged);
    const std::tuple<const char*, Array, Array, Array, std::size_t> cases[] = {
        {"order", {b, a}, {c, record("d")}, {b, a, flagged(c), flagged(record("d"))}, 0},
        {"the list's record wins", {a}, {differingAt(5)}, {a}, 1},
        {"each of the five fields counts", variants, {a}, variantsAndA, 0},
        {"the same text in other fields", {asr}, {rsr}, {asr, flagged(rsr)}, 0},
        {"duplicates in the cache", {a}, {b, b, a}, {a, flagged(b), flagged(b)}, 1},
        {"duplicates in the list", {a, a}, {a}, {a, a}, 1},
        {"lengths", {}, lengths, flaggedLengths, 0},
        {"a flagged record in the list", {flagged(a)}, {a, b}, {flagged(a), flagged(b)}, 1},
        {"records of fewer than five fields",
         {shortOne},
         {shortOne, empty},
         {shortOne, flagged(shortOne), flagged(empty)},
         0},
        {"values that are not arrays",
         {"x", 1},
         {"x", 1, dictionary},
         {"x", 1, "x", 1, dictionary},
         0},
    };
    for (const auto& [name, list, cached, merged, duplicates] : cases) {
        const paths::MergedRecords result = paths::mergeRecords(list, cached);
        EXPECT_EQ(result.records, merged) << name;
        EXPECT_EQ(result.duplicates, duplicates) << name;
    }
}

TEST(LocationRecords, AreSplitByLengthAlone) {
    PropertyList fourteen = record("14", 14);
    fourteen.array()->back() = false;
    const paths::SplitRecords split = paths::splitRecords(
        {record("a"), fourteen, "text", record("b", 20), Array(), record("c", 1)});
    EXPECT_EQ(split.own, (Array{record("a"), "text", Array(), record("c", 1)}));
    EXPECT_EQ(split.net, (Array{fourteen, record("b", 20)}));
}

} // namespace
