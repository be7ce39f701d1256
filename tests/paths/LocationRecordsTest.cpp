#include "paths/LocationRecords.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

using platform::PropertyList;
using Array = PropertyList::Array;

namespace {

// As values: braces around a lone array would copy it instead of holding it.
PropertyList record(PropertyList first, std::size_t size, PropertyList rest = "r") {
    Array fields(size, rest);
    fields.front() = std::move(first);
    return fields;
}

/// What a record of the cache becomes in the list.
PropertyList flagged(const PropertyList& original) {
    Array fields = *original.array();
    if (fields.size() < 13)
        fields.resize(13, "");
    if (fields.size() == 13)
        fields.emplace_back(true);
    fields[13] = true;
    return fields;
}

TEST(LocationRecords, AreEqualByValueWhateverKindOfNumberHoldsIt) {
    const std::int64_t two53 = std::int64_t{1} << 53;
    const auto two63 = std::uint64_t{1} << 63;
    const auto minimum = std::numeric_limits<std::int64_t>::min();
    const double nan = std::nan("");
    using Dictionary = PropertyList::Dictionary;
    const struct {
        PropertyList left;
        PropertyList right;
        bool same;
    } cases[] = {
        {true, 1, true},
        {true, 1.0, true},
        {1, 1.0, true},
        {false, -0.0, true},
        {true, 2, false},
        {0.5, 0.5, true},
        {1, 1.5, false},
        {-1, std::numeric_limits<std::uint64_t>::max(), false},
        {two53, 0x1p53, true},
        {two53 + 1, 0x1p53, false},
        {two63, 0x1p63, true},
        {two63 + 1, 0x1p63, false},
        {minimum, -0x1p63, true},
        {std::numeric_limits<std::int64_t>::max(), 0x1p63, false},
        {std::numeric_limits<std::uint64_t>::max(), 0x1p64, false},
        {minimum, two63, false},
        {1e300, 1e300, true},
        {HUGE_VAL, -HUGE_VAL, false},
        {nan, -nan, true},
        {nan, 0, false},
        {"1", 1, false},
        {"1", true, false},
        {"", false, false},
        {"\u00e9", "e\u0301", false},
        {"a string too long to lie inside", "a string too long to lie inside", true},
        {std::string("a\0b", 3), std::string("a\0c", 3), false},
        {PropertyList::Date{1}, PropertyList::Date{1}, true},
        {PropertyList::Date{1}, 1, false},
        {PropertyList::Data{{'a'}}, "a", false},
        {PropertyList::Data{{'a'}}, PropertyList::Data{{'a'}}, true},
        {Array{1, "a"}, Array{1.0, "a"}, true},
        {Array{1, "a"}, Array{"a", 1}, false},
        {Array{1}, Array{1, 1}, false},
        {Dictionary{{"a", 1}, {"b", true}}, Dictionary{{"b", 1.0}, {"a", true}}, true},
        {Dictionary{{"a", 1}}, Dictionary{{"b", 1}}, false},
        {Dictionary{{"a", 1}}, Dictionary{{"a", 1}, {"b", 1}}, false},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        for (const bool turned : {false, true}) {
            const auto& [left, right, same] = cases[i];
            EXPECT_EQ(
                mergeRecords({record(turned ? right : left, 5)}, {record(turned ? left : right, 5)})
                    .duplicates,
                same ? 1U : 0U)
                << "case " << i << (turned ? ", turned" : "");
        }
}

TEST(LocationRecords, TheCachesRecordsFollowWithoutThoseThatTheListHas) {
    const PropertyList a = record("a", 13);
    const PropertyList b = record("b", 13);
    const PropertyList shortOne = record("s", 4);
    const PropertyList empty = Array();
    const auto differingAt = [&](std::size_t position) {
        PropertyList fields = a;
        (*fields.array())[position] = "other";
        return fields;
    };
    const struct {
        const char* name;
        Array list;
        Array cached;
        Array merged;
        std::size_t duplicates;
    } cases[] = {
        {"order",
         {b, a},
         {record("d", 13), record("c", 13)},
         {b, a, flagged(record("d", 13)), flagged(record("c", 13))},
         0},
        {"the list's own wins", {a}, {differingAt(5), differingAt(12)}, {a}, 2},
        {"each field counts",
         {a},
         {differingAt(0), differingAt(1), differingAt(2), differingAt(3), differingAt(4)},
         {a, flagged(differingAt(0)), flagged(differingAt(1)), flagged(differingAt(2)),
          flagged(differingAt(3)), flagged(differingAt(4))},
         0},
        {"doubles in the cache", {a}, {b, b, a}, {a, flagged(b), flagged(b)}, 1},
        {"doubles in the list", {a, a}, {a}, {a, a}, 1},
        {"lengths",
         {},
         {record("5", 5), record("12", 12), record("13", 13), record("14", 14), record("16", 16)},
         {flagged(record("5", 5)), flagged(record("12", 12)), flagged(record("13", 13)),
          flagged(record("14", 14)), flagged(record("16", 16))},
         0},
        {"a flagged record of the list",
         {flagged(a)},
         {a, flagged(b)},
         {flagged(a), flagged(b)},
         1},
        {"short ones are nobody's doubles",
         {shortOne, empty},
         {shortOne, empty},
         {shortOne, empty, flagged(shortOne), flagged(empty)},
         0},
        {"no arrays",
         {"x", 1},
         {"x", 1, PropertyList::Dictionary()},
         {"x", 1, "x", 1, PropertyList::Dictionary()},
         0},
        {"nothing", {}, {}, {}, 0},
    };
    for (const auto& c : cases) {
        const MergedRecords result = mergeRecords(c.list, c.cached);
        EXPECT_EQ(result.records, c.merged) << c.name;
        EXPECT_EQ(result.duplicates, c.duplicates) << c.name;
    }
    EXPECT_EQ(mergeRecords({}, {record("5", 5)}).records,
              (Array{PropertyList(
                  Array{"5", "r", "r", "r", "r", "", "", "", "", "", "", "", "", true})}));
}

TEST(LocationRecords, AreSplitByLengthAlone) {
    PropertyList fourteen = record("14", 14);
    fourteen.array()->back() = false;
    const SplitRecords split =
        splitRecords({record("a", 13), fourteen, "text", record("b", 20), Array(), record("c", 1)});
    EXPECT_EQ(split.own, (Array{record("a", 13), "text", Array(), record("c", 1)}));
    EXPECT_EQ(split.net, (Array{fourteen, record("b", 20)}));
}

TEST(LocationRecords, AreMergedAsComparingEachWithEachWouldDo) {
    // Records of few values, so that equal ones are frequent, from a fixed linear generator.
    std::uint32_t state = 1;
    const auto random = [&](std::uint32_t limit) {
        state = state * 1664525U + 1013904223U;
        return (state >> 16) % limit;
    };
    const PropertyList values[] = {1, true, "1"};
    const auto records = [&] {
        Array result;
        for (int i = 0; i < 300; ++i) {
            Array fields;
            for (std::uint32_t size = 4 + random(11); size > 0; --size)
                fields.push_back(values[random(fields.size() < 2 ? 3 : 2)]);
            result.emplace_back(std::move(fields));
        }
        return result;
    };
    const auto same = [](const PropertyList& one, const PropertyList& other) {
        const auto text = [](const PropertyList& value) { return value.string().has_value(); };
        bool equal = one.array()->size() >= 5 && other.array()->size() >= 5;
        for (std::size_t i = 0; equal && i < 5; ++i)
            equal = text((*one.array())[i]) == text((*other.array())[i]);
        return equal;
    };
    const Array list = records();
    const Array cached = records();
    Array expected = list;
    for (const PropertyList& candidate : cached)
        if (std::none_of(list.begin(), list.end(),
                         [&](const PropertyList& known) { return same(known, candidate); }))
            expected.emplace_back(flagged(candidate));
    ASSERT_GT(expected.size(), list.size());
    EXPECT_EQ(mergeRecords(list, cached).records, expected);
}

} // namespace
