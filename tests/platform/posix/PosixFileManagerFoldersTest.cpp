#include "platform/posix/PosixFileManager.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Optional;
using testing::UnorderedElementsAre;

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

class PosixFileManagerFolders : public testing::Test {
  protected:
    std::vector<std::string> names(const std::string& below = "") const {
        auto result = manager.contentsOfDirectory(folder.file(below));
        std::ranges::sort(*result);
        return *result;
    }

    test::TemporaryFolder folder;
    platform::posix::PosixFileManager manager{folder.file("root")};
};

TEST_F(PosixFileManagerFolders, NothingThatIsInTheWayIsReplaced) {
    fs::create_directories(folder.file("root/Library"));
    const std::string source = folder.write("source", "s");
    folder.write("file", "f");
    fs::create_directory(folder.file("folder"));
    fs::create_symlink("nothing", folder.file("dangling"));
    for (const char* taken : {"file", "folder", "dangling", "missing/x", "file/x"}) {
        const std::string path = folder.file(taken);
        EXPECT_FALSE(manager.createDirectory(path)) << taken;
        EXPECT_FALSE(manager.createSymbolicLink(path, "target")) << taken;
        EXPECT_FALSE(manager.moveFile(source, path)) << taken;
    }
    EXPECT_FALSE(manager.moveFile(folder.file("missing"), folder.file("new")));
    EXPECT_EQ(contents(source), "s");
    EXPECT_EQ(contents(folder.file("file")), "f");
    EXPECT_THAT(names(), ElementsAre("dangling", "file", "folder", "root", "source"));

    EXPECT_TRUE(manager.createDirectory("/Library/new"));
    EXPECT_TRUE(manager.createSymbolicLink("/Library/link", "/Library/new"));
    EXPECT_TRUE(manager.moveFile(source, "/Library/new/moved"));
    EXPECT_EQ(fs::read_symlink(folder.file("root/Library/link")), "/Library/new");
    EXPECT_EQ(contents(folder.file("root/Library/new/moved")), "s");
    EXPECT_FALSE(fs::exists(source));
}

TEST_F(PosixFileManagerFolders, FilesAndLinksAreRemovedAndFoldersAreNot) {
    folder.write("folder/file", "f");
    fs::create_directory_symlink("folder", folder.file("link"));
    EXPECT_TRUE(manager.removeFile(folder.file("link")));
    EXPECT_FALSE(manager.removeFile(folder.file("link")));
    EXPECT_FALSE(manager.removeFile(folder.file("folder")));
    EXPECT_TRUE(manager.removeFile(folder.file("folder/file")));
    EXPECT_TRUE(names("folder").empty());
}

TEST_F(PosixFileManagerFolders, AMoveToAnotherFileSystemKeepsContentsModeAndTimes) {
    char pattern[] = "/dev/shm/halvex-XXXXXX";
    const char* elsewhere = ::mkdtemp(pattern);
    if (!elsewhere || statusOf(elsewhere).st_dev == statusOf(folder.path()).st_dev)
        GTEST_SKIP() << "there is no other file system";
    const std::string away = elsewhere;
    const std::string file = folder.write("file", std::string(200'000, 'x') + "end");
    const std::string bytes = contents(file);
    const timespec times[] = {{1000, 1}, {2000, 3}};
    ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    fs::permissions(file, fs::perms(0640));
    fs::create_symlink("nowhere", folder.file("link"));
    fs::create_directory(folder.file("folder"));

    EXPECT_FALSE(manager.moveFile(file, away + "/missing/moved"));
    EXPECT_FALSE(manager.moveFile(folder.file("folder"), away + "/folder"));
    std::ofstream(away + "/taken") << "t";
    EXPECT_FALSE(manager.moveFile(file, away + "/taken"));
    EXPECT_FALSE(manager.moveFile(folder.file("link"), away + "/taken"));
    EXPECT_EQ(contents(away + "/taken"), "t");
    EXPECT_EQ(contents(file), bytes);
    EXPECT_THAT(manager.contentsOfDirectory(away), Optional(ElementsAre("taken")));

    EXPECT_TRUE(manager.moveFile(file, away + "/moved"));
    EXPECT_TRUE(manager.moveFile(folder.file("link"), away + "/link"));
    EXPECT_EQ(contents(away + "/moved"), bytes);
    EXPECT_EQ(statusOf(away + "/moved").st_mode & 07777U, 0640U);
    EXPECT_EQ(statusOf(away + "/moved").st_mtim.tv_sec, 2000);
    EXPECT_EQ(fs::read_symlink(away + "/link"), "nowhere");
    EXPECT_THAT(names(), ElementsAre("folder"));
    EXPECT_THAT(manager.contentsOfDirectory(away),
                Optional(UnorderedElementsAre("taken", "moved", "link")));
    fs::remove_all(away);
}

TEST_F(PosixFileManagerFolders, ListsFollowLinksAtTheTopAlone) {
    folder.write("top/a/b/c", "");
    folder.write("top/.hidden", "");
    fs::create_directory_symlink("..", folder.file("top/a/up"));
    fs::create_directory_symlink("top", folder.file("link"));
    for (const char* top : {"top", "link"}) {
        EXPECT_THAT(manager.contentsOfDirectory(folder.file(top)),
                    Optional(UnorderedElementsAre("a", ".hidden")));
        EXPECT_THAT(manager.subpaths(folder.file(top)),
                    Optional(UnorderedElementsAre("a", "a/b", "a/b/c", "a/up", ".hidden")));
    }
    for (const char* none : {"top/.hidden", "missing"}) {
        EXPECT_EQ(manager.contentsOfDirectory(folder.file(none)), std::nullopt) << none;
        EXPECT_EQ(manager.subpaths(folder.file(none)), std::nullopt) << none;
    }
}

TEST_F(PosixFileManagerFolders, BelowAnUnreadableFolderNothingIsListed) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root may read every folder";
    folder.write("top/a/b", "");
    folder.write("top/.hidden", "");
    fs::permissions(folder.file("top/a"), fs::perms::none);
    EXPECT_THAT(manager.subpaths(folder.file("top")),
                Optional(UnorderedElementsAre("a", ".hidden")));
    fs::permissions(folder.file("top/a"), fs::perms::owner_all);
}

TEST_F(PosixFileManagerFolders, LinksInAPathAreResolvedAsFarAsItExists) {
    folder.write("real/file", "");
    fs::create_directory_symlink("real", folder.file("relative"));
    fs::create_directory_symlink(folder.file("relative"), folder.file("absolute"));
    fs::create_symlink("../gone/away", folder.file("real/dangling"));
    fs::create_symlink("circle", folder.file("circle"));
    const std::string base = fs::canonical(folder.path());
    const struct {
        std::string path;
        std::string resolved;
    } cases[] = {
        {base + "/absolute/file", base + "/real/file"},
        {base + "/absolute/missing/x", base + "/real/missing/x"},
        {base + "/relative/dangling", base + "/gone/away"},
        {base + "//relative/./file/", base + "/real/file"},
        {base + "/absolute/../real", base + "/real"},
        {base + "/missing/../real", base + "/real"},
        {base + "/circle/x", base + "/circle/x"},
        {"/..", "/"},
        {"/", "/"},
        {"relative", "relative"},
        {"", ""},
    };
    for (const auto& [path, resolved] : cases)
        EXPECT_EQ(manager.resolvingSymbolicLinks(path), resolved) << path;
    EXPECT_TRUE(manager.isSymbolicLink(folder.file("real/dangling")));
    EXPECT_FALSE(manager.isSymbolicLink(folder.file("real/file")));
    EXPECT_FALSE(manager.isSymbolicLink(folder.file("missing")));
}

} // namespace
