#include "platform/Bundle.h"
#include "platform/PropertyList.h"
#include "platform/expat/ExpatPropertyLists.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

using platform::PropertyList;
namespace fs = std::filesystem;

namespace {

std::string text(const PropertyList::Array& record, std::size_t element) {
    return std::string(record.at(element).string().value_or(""));
}

/// What is wrong with a location; empty when nothing is.
std::string faultOf(const PropertyList& location) {
    const PropertyList::Array* record = location.array();
    if (!record || record->size() != 6)
        return "no record of six elements";
    for (const std::size_t name : {0U, 1U})
        if (text(*record, name).empty() || text(*record, name).find('_') != std::string::npos)
            return "no readable name at " + std::to_string(name);
    if (!fs::is_regular_file("/usr/share/zoneinfo/" + text(*record, 2)))
        return "the system does not know the zone";
    if (!testing::Matches(testing::MatchesRegex("[A-Z][A-Z]"))(text(*record, 5)))
        return "no country code";
    return {};
}

TEST(Pane, HasWellFormedLocationsThatCanBeToldApartAndLieWhereTheyAre) {
    platform::expat::install();
    const auto pane = platform::Bundle::bundleWithPath(HALVEX_PANE);
    ASSERT_TRUE(pane);
    const auto resource = pane->pathForResource("LocationsConfig", "plist");
    const auto locations = platform::propertyLists().readArray(resource.value_or(""));
    ASSERT_TRUE(locations);
    std::map<std::string, const PropertyList::Array*> found;
    for (const PropertyList& location : *locations) {
        ASSERT_EQ(faultOf(location), "") << found.size();
        const std::string name = text(*location.array(), 0) + ", " + text(*location.array(), 1);
        EXPECT_TRUE(found.emplace(name, location.array()).second) << name;
    }
    EXPECT_GE(found.size(), 100U);

    // One in each quarter of the globe, with and without seconds in the table.
    for (const auto& [name, zone, latitude, longitude] :
         {std::tuple("Tokyo, Japan", "Asia/Tokyo", 35.65, 139.75),
          {"New York, United States", "America/New_York", 40.71, -74.01},
          {"São Paulo, Brazil", "America/Sao_Paulo", -23.53, -46.62},
          {"Sydney, Australia", "Australia/Sydney", -33.87, 151.22}}) {
        ASSERT_TRUE(found.contains(name)) << name;
        const PropertyList::Array& record = *found[name];
        EXPECT_EQ(text(record, 2), zone);
        EXPECT_NEAR(record.at(3).real().value_or(999), latitude, 0.01) << name;
        EXPECT_NEAR(record.at(4).real().value_or(999), longitude, 0.01) << name;
    }
}

} // namespace
