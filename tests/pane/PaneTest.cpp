#include "menuextras/ExportedIdentifiers.h"
#include "paths/LocationRecords.h"
#include "paths/ovxPaths.h"
#include "platform/Bundle.h"
#include "tests/pane/FolderContents.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace test;
using platform::Bundle;
using platform::PropertyList;
using testing::Matches;
using testing::MatchesRegex;
namespace fs = std::filesystem;

namespace {

class Pane : public testing::Test {
  protected:
    PropertyList::Array locations() const {
        const auto resource = pane->pathForResource("LocationsConfig", "plist");
        auto list = platform::propertyLists().readArray(resource.value_or(""));
        return list ? std::move(*list) : PropertyList::Array();
    }

    SupportTree tree;
    std::shared_ptr<Bundle> pane = Bundle::bundleWithPath(HALVEX_PANE);
};

TEST_F(Pane, IsABundleWithEveryItemWhole) {
    ASSERT_TRUE(pane);
    EXPECT_EQ(pane->bundleIdentifier(), HalvexPrefsBundleID);
    const fs::path plugIns = pane->builtInPlugInsPath();
    EXPECT_TRUE(fs::exists(plugIns / kHalvexTimeExtraFile));
    for (const auto& item : fs::directory_iterator(plugIns)) {
        const auto built = folderContents(fs::path(HALVEX_EXTRAS) / item.path().filename());
        EXPECT_GE(built.size(), 2U) << item.path();
        EXPECT_TRUE(folderContents(item.path()) == built) << item.path();
    }
}

std::string text(const PropertyList::Array& record, std::size_t element) {
    const auto string = record.at(element).string();
    return string ? std::string(*string) : "";
}

bool isWithin(const PropertyList& degrees, double limit) {
    const auto value = degrees.real();
    return value && *value >= -limit && *value <= limit;
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
    if (!isWithin(record->at(3), 90) || !isWithin(record->at(4), 180))
        return "no place on the globe";
    if (!Matches(MatchesRegex("[A-Z][A-Z]"))(text(*record, 5)))
        return "no country code";
    return {};
}

TEST_F(Pane, HasLocationsThatAreWellFormedAndCanBeToldApart) {
    const PropertyList::Array list = locations();
    EXPECT_GE(list.size(), 100U);
    std::set<std::pair<std::string, std::string>> names;
    for (const PropertyList& location : list) {
        const std::string name = location.array() ? text(*location.array(), 0) : "?";
        ASSERT_EQ(faultOf(location), "") << name;
        EXPECT_TRUE(names.emplace(name, text(*location.array(), 1)).second) << name;
    }
}

TEST_F(Pane, PutsCitiesWhereTheyAre) {
    struct City {
        const char *name, *country, *zone;
        double latitude, longitude;
    };
    // One in each quarter of the globe, with and without seconds in the table, west and east.
    const City cities[] = {
        {"Tokyo", "Japan", "Asia/Tokyo", 35.65, 139.75},
        {"New York", "United States", "America/New_York", 40.71, -74.01},
        {"São Paulo", "Brazil", "America/Sao_Paulo", -23.53, -46.62},
        {"Sydney", "Australia", "Australia/Sydney", -33.87, 151.22},
        {"Accra", "Ghana", "Africa/Accra", 5.55, -0.22},
        {"Kingston", "Jamaica", "America/Jamaica", 17.97, -76.79},
    };
    const PropertyList::Array list = locations();
    for (const City& city : cities) {
        const auto found = std::ranges::find_if(list, [&](const PropertyList& location) {
            return text(*location.array(), 0) == city.name;
        });
        ASSERT_NE(found, list.end()) << city.name;
        const PropertyList::Array& record = *found->array();
        EXPECT_EQ(text(record, 1), city.country);
        EXPECT_EQ(text(record, 2), city.zone);
        EXPECT_NEAR(record.at(3).real().value_or(999), city.latitude, 0.01) << city.name;
        EXPECT_NEAR(record.at(4).real().value_or(999), city.longitude, 0.01) << city.name;
    }
}

TEST_F(Pane, GivesItsLocationsToWhoeverHasNoListYet) {
    const PropertyList::Array list = locations();
    for (const char* place : {HalvexProPrefsAllUsers, HalvexProPrefsAUser}) {
        const SupportTree home{{kUser, "/Library/PreferencePanes", "~/Library/PreferencePanes"}};
        fs::copy(HALVEX_PANE, home.place(place), fs::copy_options::recursive);
        EXPECT_EQ(HalvexFilePaths::HalvexLoadLocationFile(), list) << place;
    }
}

TEST_F(Pane, HasLocationsThatStayTheUsersOwnWhenTheyAreSaved) {
    const PropertyList::Array list = locations();
    EXPECT_EQ(splitRecords(list).own, list);
    EXPECT_EQ(mergeRecords(list, list).records, list);
}

} // namespace
