#include "paths/ovxPaths.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::UnorderedElementsAre;
namespace fs = std::filesystem;
using Paths = HalvexFilePaths;

namespace {

constexpr const char* kBackgrounds = "/Library/Desktop Pictures/Glimmerbox Backgrounds";
const std::string kUserText = kUser;
const std::string kUserMakerText = kUserMaker;
const std::string kLocalMakerText = kLocalMaker;
const std::string kPictures = kLocalMakerText + "/Pictures";
const std::string kThemes = kLocalMakerText + "/Themes";
const std::string kFrames = kUserText + "/Glimmerbox Frames";
const std::string kFramesLink = kFrames + "/Glimmerbox Backgrounds";
const std::string kPicturesLink = kPictures + "/Glimmerbox Backgrounds";

std::string failure(const std::string& path) {
    return "ovxMakeDirIfNeeded: Error creating path: " + path;
}

/// For operations without a result.
template <class Operation>
std::string without(Operation operation) {
    operation();
    return {};
}

TEST(SupportFolders, AreWhereTheLayoutPutsThemAndOnlyWhatItSaysIsCreated) {
    const RecordingWorkspace workspace;
    const struct {
        const char* name;
        std::string (*operation)();
        std::string result;
        std::set<std::string> created;
        std::vector<std::string> existing = {kUser, kLocal};
        std::vector<std::string> failures = {};
    } cases[] = {
        {"user", [] { return Paths::ovxGetUserApplSupportFolder(); }, kUser, {}, {}},
        {"user, subfolder",
         [] { return Paths::ovxGetUserApplSupportFolder("S"); },
         kUserText + "/S",
         {kUserText + "/S"}},
        {"user, subfolder of nothing",
         [] { return Paths::ovxGetUserApplSupportFolder("S"); },
         kUserText + "/S",
         {},
         {},
         {kUserText + "/S"}},
        {"user maker",
         [] { return Paths::ovxGetUserQuorvaneSoftwareFolder(); },
         kUserMaker,
         {kUserMaker}},
        {"user maker, subfolder",
         [] { return Paths::ovxGetUserQuorvaneSoftwareFolder("S"); },
         kUserMakerText + "/S",
         {kUserMaker, kUserMakerText + "/S"}},
        {"user product",
         [] { return Paths::ovxGetUsersHalvexProSupportDir(); },
         kUserProduct,
         {kUserMaker, kUserProduct}},
        {"user product in nothing",
         [] { return Paths::ovxGetUsersHalvexProSupportDir(); },
         kUserProduct,
         {},
         {},
         {kUserMaker, kUserProduct}},
        {"local maker",
         [] { return Paths::ovxGetLocalQuorvaneSoftwareSupportDir(); },
         kLocalMaker,
         {kLocalMaker}},
        {"local maker, of strings",
         [] { return ovxPaths::ovxGetLocalQuorvaneSoftwareSupportDir(); },
         kLocalMaker,
         {kLocalMaker}},
        {"local product",
         [] { return Paths::ovxGetLocalHalvexApplSupportFolder(); },
         kLocalMakerText + "/Halvex",
         {kLocalMaker, kLocalMakerText + "/Halvex"}},
        {"local Pro",
         [] { return Paths::ovxGetLocalHalvexProSupportDir(); },
         kLocalMakerText + "/Halvex Pro",
         {kLocalMakerText + "/Halvex Pro"},
         {kLocalMaker}},
        {"local Pro in nothing",
         [] { return Paths::ovxGetLocalHalvexProSupportDir(); },
         kLocalMakerText + "/Halvex Pro",
         {},
         {kLocal},
         {kLocalMakerText + "/Halvex Pro"}},
        {"old location file",
         [] { return Paths::HalvexOldPathLocationFile(); },
         "~/Library/Halvex Locations",
         {},
         {}},
        {"Halvex in the maker folder",
         [] { return ovxPaths::ovxGetApplSupportFolder(); },
         kUserMakerText + "/Halvex",
         {kUserMaker, kUserMakerText + "/Halvex"}},
        {"Halvex in the maker folder, subfolder",
         [] { return ovxPaths::ovxGetApplSupportFolder("S"); },
         kUserMakerText + "/Halvex/S",
         {kUserMaker, kUserMakerText + "/Halvex", kUserMakerText + "/Halvex/S"}},
        {"Halvex outside",
         [] { return without(ovxPaths::ovxHalvexMakeUserSupportDir); },
         "",
         {kUser, kUserText + "/Halvex"},
         {}},
        {"local folders, no backgrounds",
         [] { return without(ovxPaths::ovxHalvexMakeLocalSupportDir); },
         "",
         {kLocalMaker, kLocalMakerText + "/Halvex", kPictures, kLocalMakerText + "/Holidays",
          kThemes}},
        {"local folders, backgrounds",
         [] { return without(ovxPaths::ovxHalvexMakeLocalSupportDir); },
         "",
         {kLocalMaker, kLocalMakerText + "/Halvex", kPictures, kPicturesLink,
          kLocalMakerText + "/Holidays", kThemes},
         {kLocal, kBackgrounds}},
        {"local folders in nothing",
         [] { return without(ovxPaths::ovxHalvexMakeLocalSupportDir); },
         "",
         {},
         {kBackgrounds},
         {kLocalMaker, kLocalMakerText + "/Halvex", kPictures, kLocalMakerText + "/Holidays",
          kThemes}},
        {"Glimmerbox",
         [] { return without(ovxPaths::ovxGlimmerboxMakeSupportDir); },
         "",
         {kUser, kFrames, kFramesLink, kBackgrounds},
         {"/Library/Desktop Pictures"}},
        {"Glimmerbox, no desktop pictures",
         [] { return without(ovxPaths::ovxGlimmerboxMakeSupportDir); },
         "",
         {kUser, kFrames},
         {},
         {kBackgrounds}},
        {"backgrounds", ovxPaths::ovxGetDeskTopBackgroundsPath, kBackgrounds, {}},
        {"frames", ovxPaths::ovxGetGlimmerboxSupportPath, kFrames, {}},
        {"albums", ovxPaths::ovxGetiPhotoAlbumPath, "~/Pictures/iPhoto Library/Albums", {}},
        {"list of themes",
         [] { return without(ovxPaths::HalvexThemesList); },
         "",
         {kThemes},
         {kLocalMaker}},
        {"list of pictures",
         [] { return without(ovxPaths::HalvexPicturesList); },
         "",
         {kPictures},
         {kLocalMaker}},
        {"list of pictures in nothing",
         [] { return without(ovxPaths::HalvexPicturesList); },
         "",
         {},
         {kLocal},
         {kPictures}},
        {"list of frames",
         [] { return without([] { ovxPaths::ovxGlimmerboxGetListFrames(); }); },
         "",
         {}},
        {"show themes",
         [] { return without([] { ovxPaths::ovxShowHalvexThemeFolder(); }); },
         "",
         {kUserText + "/Themes"}},
        {"show local themes",
         [] { return without(ovxPaths::ovxShowSystemHalvexThemeFolder); },
         "",
         {kThemes},
         {kLocalMaker}},
        {"show frames", [] { return without([] { ovxPaths::ovxShowFramesFolder(); }); }, "", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SupportTree tree(c.existing);
        const auto before = tree.entries();
        EXPECT_EQ(tree.shown(c.operation()), c.result);
        std::set<std::string> created;
        std::ranges::set_difference(tree.entries(), before, std::inserter(created, created.end()));
        EXPECT_EQ(created, c.created);
        std::vector<std::string> lines;
        for (const std::string& path : c.failures)
            lines.push_back(failure(tree.path(path)));
        EXPECT_EQ(tree.log.take(), lines);
    }
}

TEST(SupportFolders, WhateverIsInAFoldersPlaceStaysAndIsNotLogged) {
    SupportTree tree({kLocalMaker});
    tree.write(kThemes, "a file");
    tree.write(kPictures, "a file");
    tree.make(kUser);
    fs::create_symlink("nowhere", tree.place(kUserMaker));
    EXPECT_EQ(ovxPaths::HalvexThemesList(), std::nullopt);
    EXPECT_EQ(ovxPaths::HalvexPicturesList(), std::nullopt);
    EXPECT_EQ(tree.shown(Paths::ovxGetUserQuorvaneSoftwareFolder()), kUserMaker);
    EXPECT_THAT(tree.log.take(), IsEmpty());
    EXPECT_TRUE(fs::is_regular_file(tree.place(kThemes)));
    EXPECT_TRUE(fs::is_regular_file(tree.place(kPictures)));
    EXPECT_TRUE(fs::is_symlink(tree.place(kUserMaker)));
}

TEST(SupportFolders, LinksHoldTheBackgroundsPathAndASecondOneIsLoggedEachInItsOwnWords) {
    SupportTree tree({kLocal, kBackgrounds});
    for (int i = 0; i < 2; ++i) {
        ovxPaths::ovxHalvexMakeLocalSupportDir();
        ovxPaths::ovxGlimmerboxMakeSupportDir();
    }
    EXPECT_THAT(tree.log.take(),
                ElementsAre("Error creating symbolic link at: " + kPictures,
                            "Error Creating SymbolicLink at: " + tree.path(kFrames)));
    EXPECT_EQ(fs::read_symlink(tree.place(kPicturesLink)), kBackgrounds);
    EXPECT_EQ(fs::read_symlink(tree.place(kFramesLink)), kBackgrounds);
}

TEST(SupportFolders, TheOldLocationFileIsFoundBehindLinks) {
    SupportTree tree({"~/elsewhere"});
    fs::create_symlink("../elsewhere/list", tree.place("~/Library/Halvex Locations"));
    EXPECT_EQ(tree.shown(Paths::HalvexOldPathLocationFile()), "~/elsewhere/list");
}

TEST(SupportFolders, ListsHoldEverythingInTheFileSystemsOrder) {
    SupportTree tree;
    for (const char* name : {"/b", "/a", "/.hidden", "/c/d/e", "/c/f"}) {
        tree.write(kThemes + name, "");
        tree.write(kPictures + name, "");
    }
    fs::create_directory_symlink(tree.place(kThemes), tree.place(kPictures + "/link"));

    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(tree.place(kThemes)))
        names.push_back(entry.path().filename());
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(ovxPaths::HalvexThemesList(), names);

    std::vector<std::string> subpaths;
    for (const auto& entry : fs::recursive_directory_iterator(tree.place(kPictures)))
        subpaths.push_back(entry.path().string().substr(tree.place(kPictures).size() + 1));
    ASSERT_EQ(subpaths.size(), 8U);
    EXPECT_EQ(ovxPaths::HalvexPicturesList(), subpaths);
}

TEST(SupportFolders, FramesAreTheFilesThatNameAndExclusionLeave) {
    SupportTree tree;
    EXPECT_EQ(ovxPaths::ovxGlimmerboxGetListFrames(), std::nullopt);
    for (const char* name :
         {"a.zip", "a.sit", "Transit", "a.gz", "a.ivc", "notes.txt", "a.plist", ".DS_Store",
          "x/.DS_Store", "b.png", "B.ZIP", "txt.png", "x/c.png", "x.zip/d.png", ".DS_Store2"})
        tree.write(kFrames + '/' + name, "");
    fs::create_symlink("nothing", tree.place(kFrames + "/dangling"));
    fs::create_symlink("b.png", tree.place(kFrames + "/link"));
    const auto frame = [&](const std::string& name) { return tree.path(kFrames + '/' + name); };
    EXPECT_THAT(ovxPaths::ovxGlimmerboxGetListFrames(),
                Optional(UnorderedElementsAre(frame("b.png"), frame("B.ZIP"), frame("txt.png"),
                                              frame("x/c.png"), frame("x.zip/d.png"),
                                              frame(".DS_Store2"), frame("link"))));
    EXPECT_THAT(ovxPaths::ovxGlimmerboxGetListFrames(
                    std::vector{frame("b.png"), frame("x/c.png"), frame("link"), frame("B.ZIP"),
                                frame(".DS_Store2"), frame("x.zip/d.png"), std::string("txt.png")}),
                Optional(ElementsAre(frame("txt.png"))));

    SupportTree other({kUser});
    other.write(kFrames, "a file");
    EXPECT_EQ(ovxPaths::ovxGlimmerboxGetListFrames(), std::nullopt);
}

TEST(SupportFolders, AreShownByTheWorkspace) {
    SupportTree tree({kUser, kLocalMaker});
    const RecordingWorkspace workspace;
    ovxPaths::ovxShowHalvexThemeFolder(&tree);
    ovxPaths::ovxShowSystemHalvexThemeFolder();
    ovxPaths::ovxShowFramesFolder(&tree);
    EXPECT_THAT(workspace.opened,
                ElementsAre(tree.path(kUserText + "/Themes"), kThemes, tree.path(kFrames)));
}

} // namespace
