#include "paths/ovxPaths.h"
#include "platform/Bundle.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace test;
using platform::Bundle;
using platform::PropertyList;
using testing::ElementsAre;
using testing::IsEmpty;
using Array = PropertyList::Array;
using Paths = HalvexFilePaths;
namespace fs = std::filesystem;

namespace {

const std::string kList = std::string(kUserProduct) + "/Halvex Locations";
const std::string kCache = std::string(kUserProduct) + "/Halvex Net Locations.plist";
const std::string kFirstOld = "~/Library/Halvex Locations";
const std::string kSecondOld = std::string(kUser) + "/Halvex Locations";
const std::string kPaneForAll = "/Library/PreferencePanes/Halvex Pro.prefPane";
const std::string kPaneForOne = "~/Library/PreferencePanes/Halvex Pro.prefPane";
const std::string kResource = "/Contents/Resources/LocationsConfig.plist";
const std::string kNoPane = "LocationList  thisBundle nil";

// As values: braces around a lone array would copy it instead of holding it.
PropertyList record(const char* name, std::size_t size = 13) {
    Array fields(size, "");
    fields[0] = name;
    return fields;
}

PropertyList net(const char* name) {
    PropertyList result = record(name);
    result.array()->emplace_back(true);
    return result;
}

std::string xml(const Array& list) {
    return platform::propertyLists().serialize(list).value_or("");
}

std::string read(const SupportTree& tree, const std::string& shown) {
    std::ifstream file(tree.place(shown), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class LocationList : public testing::Test {
  protected:
    std::string missingConfiguration(const std::string& bundle) const {
        return "bug -- missing 'LocationsConfig.plist' in bundle " + bundle;
    }
    std::string moved() const {
        return "Moved Locations from Path = " + tree.path(kFirstOld) + " to " +
               tree.path(kSecondOld);
    }

    SupportTree tree{{kUser}};
    const std::string mine = xml({record("mine")});
    const std::string other = xml({record("other")});
};

TEST_F(LocationList, IsReadFromItsFileElseFromThePaneElseEmpty) {
    const std::string list = xml({record("list")});
    const std::string all = xml({record("all")});
    const std::string one = xml({record("one")});
    const struct {
        const char* name;
        std::vector<std::pair<std::string, std::string>> files;
        std::optional<Array> result;
        std::vector<std::string> lines;
    } cases[] = {
        {"nothing", {}, Array(), {kNoPane, missingConfiguration("(null)")}},
        {"its file", {{kList, list}, {kPaneForAll + kResource, all}}, Array{record("list")}, {}},
        {"an empty list", {{kList, xml({})}, {kPaneForAll + kResource, all}}, Array(), {}},
        {"unreadable",
         {{kList, "x"}, {kPaneForAll + kResource, all}},
         Array{record("all")},
         {kNoPane, "Default locations loaded"}},
        {"no array",
         {{kList, "<plist><dict/></plist>"}, {kPaneForOne + kResource, one}},
         Array{record("one")},
         {kNoPane, "Default locations loaded"}},
        {"a folder in its place",
         {{kList + "/x", ""}},
         Array(),
         {kNoPane, missingConfiguration("(null)")}},
        {"both panes",
         {{kPaneForAll + kResource, all}, {kPaneForOne + kResource, one}},
         Array{record("all")},
         {kNoPane, "Default locations loaded"}},
        {"a pane for all without a list",
         {{kPaneForAll + "/x", ""}, {kPaneForOne + kResource, one}},
         Array(),
         {kNoPane, missingConfiguration(kPaneForAll)}},
        {"an unreadable default",
         {{kPaneForAll + kResource, "x"}, {kCache, xml({net("net")})}},
         std::nullopt,
         {kNoPane, "Default locations failed to load at " + kPaneForAll + kResource}},
        {"the cache alone",
         {{kCache, xml({record("net", 5)})}},
         Array{net("net")},
         {kNoPane, missingConfiguration("(null)")}},
        {"list and cache",
         {{kList, list}, {kCache, xml({net("list"), net("a"), net("list")})}},
         Array{record("list"), net("a")},
         {"2 duplicates locations found in subscription"}},
        {"list and unreadable cache", {{kList, list}, {kCache, "x"}}, Array{record("list")}, {}},
        {"list and empty cache", {{kList, list}, {kCache, xml({})}}, Array{record("list")}, {}},
        {"list and a folder for a cache",
         {{kList, list}, {kCache + "/x", ""}},
         Array{record("list")},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SupportTree own({kUser});
        for (const auto& [path, contents] : c.files)
            own.write(path, contents);
        const auto before = own.entries();
        EXPECT_EQ(Paths::HalvexLoadLocationFile(), c.result);
        EXPECT_EQ(own.log.take(), c.lines);
        auto after = before;
        after.insert({kUserMaker, kUserProduct});
        EXPECT_EQ(own.entries(), after) << "loading writes nothing back";
    }
}

TEST_F(LocationList, TheLoadedPaneComesBeforeThoseOnTheDisk) {
    tree.write("~/Pane.prefPane" + kResource, mine);
    tree.write(kPaneForAll + kResource, other);
    const auto pane = std::make_shared<Bundle>(
        tree.path("~/Pane.prefPane"),
        PropertyList::Dictionary{{"CFBundleIdentifier", "com.quorvanesoftware.prefHalvexPanel"}});
    Bundle::setCode(pane, Bundle::Code::Loaded);
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("mine")});
    fs::remove(tree.place("~/Pane.prefPane" + kResource));
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array());
    Bundle::setCode(pane, Bundle::Code::Unloaded);
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("other")});
    EXPECT_THAT(tree.log.take(), ElementsAre("Default locations loaded",
                                             missingConfiguration(tree.path("~/Pane.prefPane")),
                                             kNoPane, "Default locations loaded"));
}

TEST_F(LocationList, MovesHereFromOneOfItsOldPlaces) {
    tree.write(kFirstOld, mine);
    tree.write(kSecondOld, other);
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("mine")});
    EXPECT_THAT(tree.log.take(), ElementsAre(moved()));
    EXPECT_FALSE(tree.exists(kFirstOld));
    EXPECT_EQ(read(tree, kList), mine);

    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("mine")});
    EXPECT_THAT(tree.log.take(), IsEmpty()) << "a move that fails";
    EXPECT_EQ(read(tree, kSecondOld), other);

    fs::remove(tree.place(kList));
    tree.make(kFirstOld);
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("other")});
    EXPECT_THAT(tree.log.take(), ElementsAre(moved()));
    EXPECT_TRUE(tree.exists(kFirstOld));
}

TEST_F(LocationList, TheFileBehindALinkInAnOldPlaceIsMoved) {
    tree.write("~/real", mine);
    fs::create_symlink("../real", tree.place(kFirstOld));
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("mine")});
    EXPECT_THAT(tree.log.take(), ElementsAre("Moved Locations from Path = " + tree.path("~/real") +
                                             " to " + tree.path(kSecondOld)));
    EXPECT_FALSE(tree.exists("~/real"));
    EXPECT_TRUE(fs::is_symlink(tree.place(kFirstOld)));
}

TEST_F(LocationList, WithoutAListThereIsNothingToMergeInto) {
    EXPECT_EQ(Paths::mergeNetLocation(std::nullopt), std::nullopt);
    EXPECT_EQ(Paths::mergeNetLocation(Array{record("a")}), Array{record("a")});
    tree.write(kCache, xml({net("b")}));
    EXPECT_EQ(Paths::mergeNetLocation(std::nullopt), std::nullopt);
    EXPECT_EQ(Paths::mergeNetLocation(Array()), Array{net("b")});
    EXPECT_THAT(tree.log.take(), IsEmpty());
}

TEST_F(LocationList, IsSavedWithoutItsNetRecordsWhichGoIntoTheCache) {
    const std::string saving = "Saving Halvex locations: " + tree.path(kList);
    const std::string caching = "Saving net locations cache: " + tree.path(kCache);
    EXPECT_TRUE(Paths::HalvexSaveLocationTable({net("a"), record("mine"), net("b")}));
    EXPECT_EQ(read(tree, kList), mine);
    EXPECT_EQ(read(tree, kCache), xml({net("a"), net("b")}));
    EXPECT_THAT(tree.log.take(), ElementsAre(saving + " (3)", caching + " (2)"));
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), (Array{record("mine"), net("a"), net("b")}));

    EXPECT_TRUE(Paths::HalvexSaveLocationTable({}));
    EXPECT_EQ(read(tree, kList), xml({}));
    EXPECT_EQ(read(tree, kCache), xml({net("a"), net("b")})) << "without net records it stays";
    EXPECT_THAT(tree.log.take(), ElementsAre(saving + " (0)"));
    EXPECT_TRUE(Paths::HalvexSaveCacheNetLocation({}));
    EXPECT_EQ(read(tree, kCache), xml({net("a"), net("b")}));
    EXPECT_THAT(tree.log.take(), IsEmpty());
    EXPECT_EQ(tree.log.beeps(), 0);
}

TEST_F(LocationList, AFailedWriteIsLoggedAndBeepsAndTheOtherFileIsWrittenAllTheSame) {
    const std::string saving = "Saving Halvex locations: " + tree.path(kList) + " (2)";
    const std::string caching = "Saving net locations cache: " + tree.path(kCache) + " (1)";
    const std::string unable = "Unable to write: ";
    const Array list{record("mine"), net("a")};

    tree.make(kCache);
    EXPECT_TRUE(Paths::HalvexSaveLocationTable(list));
    EXPECT_THAT(tree.log.take(), ElementsAre(saving, caching, unable + tree.path(kCache)));
    EXPECT_EQ(tree.log.beeps(), 1);
    EXPECT_EQ(read(tree, kList), mine);
    EXPECT_FALSE(Paths::HalvexSaveCacheNetLocation({net("a")}));
    EXPECT_EQ(tree.log.beeps(), 2);
    tree.log.take();

    fs::remove(tree.place(kCache));
    fs::remove(tree.place(kList));
    tree.make(kList);
    EXPECT_FALSE(Paths::HalvexSaveLocationTable(list));
    EXPECT_THAT(tree.log.take(), ElementsAre(saving, caching, unable + tree.path(kList)));
    EXPECT_EQ(tree.log.beeps(), 3);
    EXPECT_EQ(read(tree, kCache), xml({net("a")}));
}

TEST_F(LocationList, TheCacheIsThereOrRemovedWhenItIsAFile) {
    EXPECT_FALSE(Paths::HalvexExistsNetLocation());
    EXPECT_TRUE(Paths::HalvexRemoveNetLocation());
    tree.write(kCache, "");
    EXPECT_TRUE(Paths::HalvexExistsNetLocation());
    EXPECT_TRUE(Paths::HalvexRemoveNetLocation());
    EXPECT_FALSE(tree.exists(kCache));
    tree.make(kCache);
    EXPECT_FALSE(Paths::HalvexExistsNetLocation());
    EXPECT_TRUE(Paths::HalvexRemoveNetLocation());
    EXPECT_TRUE(tree.exists(kCache));
    EXPECT_THAT(tree.log.take(), IsEmpty());
}

} // namespace
