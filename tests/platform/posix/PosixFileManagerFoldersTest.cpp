#include "platform/posix/TemporaryName.h"
#include "tests/platform/posix/FileManagerFixture.h"

namespace {

using namespace std::string_literals;
using namespace test;

using PosixFileManagerFolders = test::FileManagerFixture;

TEST_F(PosixFileManagerFolders, CreatingAndMovingReplaceNothing) {
    fs::create_directories(file("root/Library"));
    const std::string source = folder.write("source", "s");
    folder.write("file", "f");
    fs::create_directory(file("folder"));
    fs::create_symlink("nothing", file("dangling"));
    for (const char* taken : {"file", "folder", "dangling", "missing/x"}) {
        EXPECT_FALSE(manager.createDirectory(file(taken))) << taken;
        EXPECT_FALSE(manager.createSymbolicLink(file(taken), "target")) << taken;
        EXPECT_FALSE(manager.moveFile(source, file(taken))) << taken;
    }
    EXPECT_FALSE(manager.moveFile(file("missing"), file("new")));
    EXPECT_EQ(contents(source) + contents(file("file")), "sf");
    EXPECT_EQ(names(), (Names{"dangling", "file", "folder", "root", "source"}));

    EXPECT_TRUE(manager.createDirectory("/Library/new"));
    EXPECT_TRUE(manager.createSymbolicLink("/Library/link", "/Library/new"));
    EXPECT_TRUE(manager.moveFile(source, "/Library/new/moved"));
    EXPECT_EQ(fs::read_symlink(file("root/Library/link")), "/Library/new");
    EXPECT_EQ(contents(file("root/Library/new/moved")), "s");
    EXPECT_FALSE(fs::exists(source));
}

TEST_F(PosixFileManagerFolders, MovingToAnotherFileSystemKeepsContentsModeAndTimes) {
    std::string away = "/dev/shm/halvex-XXXXXX";
    if (!::mkdtemp(away.data()) || statusOf(away).st_dev == statusOf(folder.path()).st_dev)
        GTEST_SKIP() << "needs another file system at /dev/shm";
    const std::string bytes = std::string(200'000, 'x') + "end";
    const std::string path = folder.write("file", bytes);
    const timespec times[] = {{1000, 1}, {2000, 3}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    fs::permissions(path, fs::perms(0640));
    fs::create_symlink("nowhere", file("link"));
    fs::create_directory(file("folder"));

    std::ofstream(away + "/taken") << "t";
    for (const char* refused : {"/taken", "/missing/moved"}) {
        EXPECT_FALSE(manager.moveFile(path, away + refused));
        EXPECT_FALSE(manager.moveFile(file("link"), away + refused));
    }
    EXPECT_FALSE(manager.moveFile(file("folder"), away + "/folder"));
    EXPECT_EQ(contents(away + "/taken"), "t");
    EXPECT_EQ(contents(path), bytes);
    EXPECT_EQ(namesIn(away), Names{"taken"});

    // A process that was killed after copying has left both.
    for (const char* name : {"file", "link"}) {
        ASSERT_TRUE(manager.moveFile(file(name), away + "/both"));
        ASSERT_EQ(std::system(("cp -a " + away + "/both " + file(name)).c_str()), 0);
        EXPECT_TRUE(manager.moveFile(file(name), away + "/both")) << name;
        EXPECT_EQ(names(), name == "file"s ? (Names{"folder", "link"}) : (Names{"file", "folder"}));
        std::ofstream(file("other")) << "a different file";
        EXPECT_FALSE(manager.moveFile(file("other"), away + "/both"));
        fs::remove(file("other"));
        fs::rename(away + "/both", away + "/back");
        ASSERT_TRUE(manager.moveFile(away + "/back", file(name)));
    }
    // Only the contents differ.
    ASSERT_EQ(std::system(("cp -a " + path + " " + away + "/changed && cd " + away +
                           " && printf y | dd of=changed conv=notrunc 2>/dev/null && touch -r " +
                           path + " changed")
                              .c_str()),
              0);
    EXPECT_FALSE(manager.moveFile(path, away + "/changed"));
    fs::remove(away + "/changed");

    const std::ofstream leftover(away + '/' + platform::posix::temporaryPrefix("moved") +
                                 "leftover");
    EXPECT_TRUE(manager.moveFile(path, away + "/moved"));
    EXPECT_TRUE(manager.moveFile(file("link"), away + "/link"));
    EXPECT_EQ(contents(away + "/moved"), bytes);
    EXPECT_EQ(statusOf(away + "/moved").st_mode & 07777U, 0640U);
    EXPECT_EQ(statusOf(away + "/moved").st_mtim.tv_sec, 2000);
    EXPECT_EQ(fs::read_symlink(away + "/link"), "nowhere");
    EXPECT_EQ(names(), Names{"folder"});
    EXPECT_EQ(namesIn(away), (Names{"taken", "moved", "link"}));
    fs::remove_all(away);
}

TEST_F(PosixFileManagerFolders, ResolvesLinksInTheExistingPartOfAPath) {
    folder.write("real/file", "");
    fs::create_directory_symlink("real", file("relative"));
    fs::create_directory_symlink(file("relative"), file("absolute"));
    fs::create_symlink("../gone/away", file("real/dangling"));
    fs::create_symlink("circle", file("circle"));
    const std::string base = fs::canonical(folder.path());
    const std::pair<std::string, std::string> cases[] = {
        {base + "/absolute/file", base + "/real/file"},
        {base + "/absolute/missing/x", base + "/real/missing/x"},
        {base + "/relative/dangling", base + "/gone/away"},
        {base + "//relative/./file/", base + "/real/file"},
        {base + "/absolute/../real", base + "/real"},
        {base + "/missing/../real", base + "/real"},
        {base + "/circle/x", base + "/circle/x"},
        {"/..", "/"},
        {"relative", "relative"},
        {"", ""},
    };
    for (const auto& [path, resolved] : cases)
        EXPECT_EQ(manager.resolvingSymbolicLinks(path), resolved) << path;
    EXPECT_TRUE(manager.isSymbolicLink(file("real/dangling")));
    EXPECT_FALSE(manager.isSymbolicLink(file("real/file")));
}

} // namespace
