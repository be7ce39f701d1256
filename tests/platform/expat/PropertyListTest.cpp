#include "platform/values/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using platform::PropertyList;
using Array = PropertyList::Array;
using Dictionary = PropertyList::Dictionary;
using Type = PropertyList::Type;

const std::string kLong(100, 'x');

/// One value of each kind, with both lengths of string and both kinds of integer.
std::vector<PropertyList> sampleValues() {
    const PropertyList::Data data{{1, 2}};
    return {"short",
            kLong,
            -1,
            std::numeric_limits<std::uint64_t>::max(),
            0.5,
            true,
            false,
            PropertyList::Date{-1},
            data,
            Array{"a", kLong},
            Dictionary{{"k", kLong}}};
}

TEST(PropertyListTest, ValuesOfEveryTypeCopyMoveAndCompare) {
    const auto values = sampleValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = 0; j < values.size(); ++j) {
            EXPECT_EQ(values[i] == values[j], i == j);
            PropertyList target = values[j];
            target = values[i];
            EXPECT_EQ(target, values[i]) << "value " << i << " assigned to value " << j;
        }
        PropertyList source = values[i];
        EXPECT_EQ(PropertyList(std::move(source)), values[i]);
    }
}

TEST(PropertyListTest, ACopyIsIndependentOfItsOriginal) {
    const auto make = [](const char* text, std::uint8_t byte) {
        return Array{Array{text}, Dictionary{{"k", text}}, PropertyList::Data{{byte}}};
    };
    const PropertyList original = make("a", 7);
    PropertyList copy = original;
    copy.array()->at(0).array()->front() = "b";
    copy.array()->at(1).dictionary()->set("k", "b");
    copy.array()->at(2).data()->bytes[0] = 8;
    EXPECT_EQ(original, PropertyList(make("a", 7)));
    EXPECT_EQ(copy, PropertyList(make("b", 8)));
}

TEST(PropertyListTest, NumbersKeepTheirTypeRangeAndBits) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(PropertyList(5), PropertyList(std::uint64_t{5}));
    EXPECT_NE(PropertyList(-1), PropertyList(std::numeric_limits<std::uint64_t>::max()));
    EXPECT_NE(PropertyList(1), PropertyList(true));
    EXPECT_NE(PropertyList(1), PropertyList(1.0));
    EXPECT_EQ(PropertyList(nan), PropertyList(nan));
    EXPECT_NE(PropertyList(0.0), PropertyList(-0.0));
    EXPECT_EQ(PropertyList(-1).unsignedInteger(), std::nullopt);
    EXPECT_EQ(PropertyList(std::uint64_t{1} << 63).integer(), std::nullopt);
}

TEST(PropertyListTest, ADictionaryKeepsItsOrderAndOneValuePerKey) {
    Dictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}, {"c", 4}, {"b", 5}};
    EXPECT_EQ(dictionary, (Dictionary{{"b", 5}, {"a", 2}, {"c", 4}}));
    dictionary.set("a", "new");
    dictionary.set("d", 6);
    for (const bool present : {true, false})
        EXPECT_EQ(dictionary.erase("b"), present);
    *dictionary.find("c") = false;
    EXPECT_EQ(dictionary, (Dictionary{{"a", "new"}, {"c", false}, {"d", 6}}));
    EXPECT_NE(dictionary, (Dictionary{{"c", false}, {"a", "new"}, {"d", 6}}));
}

} // namespace
