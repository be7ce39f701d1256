#include "paths/ovxPaths.h"
#include "platform/PropertyListService.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>

using namespace test;
using platform::PropertyList;
using testing::ElementsAre;
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

// Returns a PropertyList: {array} would copy an Array instead of nesting it.
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

std::string missing(const std::string& bundle) {
    return "bug -- missing 'LocationsConfig.plist' in bundle " + bundle;
}

std::string xml(const Array& list) {
    return platform::propertyLists().serialize(list).value_or("");
}

class LocationList : public testing::Test {
  protected:
    SupportTree tree{{kUser}};
    const std::string mine = xml({record("mine")});
    const std::string other = xml({record("other")});
};

TEST_F(LocationList, FallsBackToThePanesListAndThenToAnEmptyOne) {
    using File = std::pair<std::string, std::string>;
    using Lines = std::vector<std::string>;
    const File list{kList, xml({record("list")})};
    const File all{kPaneForAll + kResource, xml({record("all")})};
    const File one{kPaneForOne + kResource, xml({record("one")})};
    const File badList{kList, "<plist><dict/></plist>"};
    const Lines none{kNoPane, missing("(null)")};
    const Lines loaded{kNoPane, "Default locations loaded"};
    const Lines failed{kNoPane, "Default locations failed to load at " + all.first};
    const std::tuple<const char*, std::vector<File>, std::optional<Array>, Lines> cases[] = {
        {"nothing", {}, Array(), none},
        {"its file", {list, all}, Array{record("list")}, {}},
        {"an empty list", {{kList, xml({})}, all}, Array(), {}},
        {"unreadable", {{kList, "x"}, all}, Array{record("all")}, loaded},
        {"no array", {badList, one}, Array{record("one")}, loaded},
        {"a folder in its place", {{kList + "/x", ""}}, Array(), none},
        {"both panes", {all, one}, Array{record("all")}, loaded},
        {"no list for all",
         {{kPaneForAll + "/x", ""}, one},
         Array(),
         {kNoPane, missing(kPaneForAll)}},
        {"an unreadable default", {{all.first, "x"}, {kCache, other}}, std::nullopt, failed},
        {"the cache alone", {{kCache, xml({record("net", 5)})}}, Array{net("net")}, none},
        {"list and cache",
         {list, {kCache, xml({net("list"), net("a"), net("list")})}},
         Array{record("list"), net("a")},
         {"2 duplicates locations found in subscription"}},
        {"unreadable cache", {list, {kCache, "x"}}, Array{record("list")}, {}},
        {"a folder for a cache", {list, {kCache + "/x", ""}}, Array{record("list")}, {}},
    };
    for (const auto& [name, files, result, lines] : cases) {
        SCOPED_TRACE(name);
        SupportTree own({kUser});
        for (const auto& [path, contents] : files)
            own.write(path, contents);
        auto entries = own.entries();
        EXPECT_EQ(Paths::HalvexLoadLocationFile(), result);
        EXPECT_EQ(own.log.take(), lines);
        entries.insert({kUserMaker, kUserProduct});
        EXPECT_EQ(own.entries(), entries) << "loading writes no file";
    }
}

TEST_F(LocationList, PrefersTheLoadedPaneToInstalledPanes) {
    const std::string path = "~/Pane.prefPane";
    tree.write(path + kResource, mine);
    tree.write(kPaneForAll + kResource, other);
    {
        const LoadedPane pane(tree.path(path));
        EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("mine")});
        fs::remove(tree.systemPath(path + kResource));
        EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array());
    }
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("other")});
    EXPECT_THAT(tree.log.take(), ElementsAre("Default locations loaded", missing(tree.path(path)),
                                             kNoPane, "Default locations loaded"));
}

TEST_F(LocationList, IsMovedFromTheFirstOldPathOrElseTheSecond) {
    const std::string moved = "Moved Locations from Path = ";
    tree.write("~/first", mine);
    tree.write("~/second", other);
    fs::create_symlink("../first", tree.systemPath(kFirstOld));
    fs::create_symlink("../../second", tree.systemPath(kSecondOld));
    tree.files.refused = {"move " + tree.path("~/first")};
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array());
    EXPECT_TRUE(tree.exists("~/second")) << "after a failed move the second path is not tried";
    EXPECT_THAT(tree.log.take(), ElementsAre(kNoPane, missing("(null)")));

    tree.files.refused.clear();
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("mine")});
    EXPECT_THAT(tree.log.take(),
                ElementsAre(moved + tree.path("~/first") + " to " + tree.path("~/second")));
    EXPECT_FALSE(tree.exists("~/first"));
    EXPECT_EQ(tree.read(kList), mine);
    EXPECT_TRUE(tree.exists("~/second"));

    fs::remove(tree.systemPath(kList));
    fs::remove(tree.systemPath(kFirstOld));
    tree.make(kFirstOld);
    EXPECT_EQ(Paths::HalvexLoadLocationFile(), Array{record("other")});
    EXPECT_THAT(tree.log.take(),
                ElementsAre(moved + tree.path(kFirstOld) + " to " + tree.path("~/second")));
    EXPECT_FALSE(tree.exists("~/second"));
}

TEST_F(LocationList, SavesOneFileEvenIfTheOtherCannotBeWritten) {
    const std::string saving = "Saving Halvex locations: " + tree.path(kList) + " (2)";
    const std::string caching = "Saving net locations cache: " + tree.path(kCache) + " (1)";
    for (const std::string& blocked : {kCache, kList}) {
        tree.make(blocked);
        EXPECT_EQ(Paths::HalvexSaveLocationTable({record("mine"), net("a")}), blocked == kCache);
        EXPECT_THAT(tree.log.take(),
                    ElementsAre(saving, caching, "Unable to write: " + tree.path(blocked)));
        EXPECT_EQ(tree.read(blocked == kCache ? kList : kCache),
                  blocked == kCache ? mine : xml({net("a")}));
        fs::remove_all(tree.systemPath(kUserProduct));
    }
    tree.make(kCache);
    EXPECT_FALSE(Paths::HalvexSaveCacheNetLocation({net("a")}));
    EXPECT_EQ(tree.log.beeps(), 3);
    EXPECT_FALSE(Paths::HalvexExistsNetLocation()) << "a folder is not a cache";
    EXPECT_TRUE(Paths::HalvexRemoveNetLocation());
    EXPECT_TRUE(tree.exists(kCache));
}

TEST_F(LocationList, KeepsTheCacheIfThereAreNoNetRecordsToSave) {
    tree.write(kCache, other);
    EXPECT_TRUE(Paths::HalvexSaveLocationTable({record("mine")}));
    EXPECT_EQ(tree.read(kCache), other);
    EXPECT_EQ(tree.log.take().size(), 1U) << "the cache is not mentioned";
    EXPECT_TRUE(Paths::HalvexRemoveNetLocation());
    EXPECT_FALSE(tree.exists(kCache));
}

} // namespace
