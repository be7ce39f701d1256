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
using namespace std::string_literals;

namespace {

// Returns a PropertyList: {array} would copy an Array instead of nesting it.
PropertyList record(PropertyList first, std::size_t size = 13) {
    Array fields(size, "r");
    fields.front() = std::move(first);
    return fields;
}

/// Returns the record that the merge appends for @p original.
PropertyList flagged(const PropertyList& original) {
    Array fields = *original.array();
    while (fields.size() < 14)
        fields.emplace_back("");
    fields[13] = true;
    return fields;
}

TEST(LocationRecords, AreComparedByValueNotByType) {
    using Dictionary = PropertyList::Dictionary;
    const std::int64_t two53 = std::int64_t{1} << 53,
                       least = std::numeric_limits<std::int64_t>::min();
    const auto two63 = std::uint64_t{1} << 63, most = std::numeric_limits<std::uint64_t>::max();
    const double nan = std::nan("");
    const Dictionary ab{{"a", 1}, {"b", true}}, ba{{"b", 1.0}, {"a", true}}, a{{"a", 1}};
    const Array numberFirst{1, "a"}, realFirst{1.0, "a"}, textFirst{"a", 1};
    const PropertyList::Date date{1};
    const PropertyList::Data data{{'1'}};
    // Values with the same number are equal; values with different numbers are not.
    const std::pair<int, PropertyList> values[] = {
        {0, true},       {0, 1},          {0, 1.0},          {1, false},
        {1, -0.0},       {2, -1},         {2, -1.0},         {3, most},
        {4, 0x1p64},     {5, two53},      {5, 0x1p53},       {6, two53 + 1},
        {7, two63},      {7, 0x1p63},     {8, two63 + 1},    {9, least},
        {9, -0x1p63},    {10, nan},       {10, -nan},        {11, "1"},
        {12, "\u00e9"},  {13, "e\u0301"}, {14, "a\0b"s},     {15, "a\0c"s},
        {16, date},      {17, data},      {18, numberFirst}, {18, realFirst},
        {19, textFirst}, {20, ab},        {20, ba},          {21, a}};
    for (const auto& [number, value] : values)
        for (const auto& [other, cached] : values)
            EXPECT_EQ(paths::mergeRecords({record(value)}, {record(cached)}).duplicates,
                      number == other ? 1U : 0U)
                << number << " and " << other;
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
