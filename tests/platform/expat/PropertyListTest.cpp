#include "platform/values/PropertyList.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using platform::PropertyList;
using Dictionary = PropertyList::Dictionary;

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
