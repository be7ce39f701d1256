#include "tests/platform/posix/FileManagerFixture.h"

#include "tests/support/ScopedEnvironment.h"

#include <cerrno>

namespace {

using namespace test;
using testing::HasSubstr;

using PosixFileManagerTest = test::FileManagerFixture;

TEST_F(PosixFileManagerTest, ReportsExistenceAndAccessOfLinkTargets) {
    const std::string one = folder.write("file", "1");
    fs::create_symlink("file", file("link"));
    fs::create_symlink(folder.path(), file("folderlink"));
    fs::create_symlink("nothing", file("dangling"));
    const std::tuple<std::string, bool, bool> cases[] = {
        {file("link"), true, false},
        {file("folderlink"), true, true},
        {file("dangling"), false, false},
        {file("file/x"), false, false},
        {"", false, false},
        {one + std::string("\0x", 2), false, false}};
    for (const auto& [path, exists, isDirectory] : cases) {
        bool reported = !isDirectory;
        EXPECT_EQ(manager.fileExists(path, &reported), exists) << path;
        EXPECT_EQ(reported, isDirectory) << path;
        EXPECT_EQ(manager.isReadableFile(path), exists) << path;
        EXPECT_EQ(manager.isWritableFile(path), exists) << path;
    }
    const bool root = ::geteuid() == 0; // may read and write every file
    fs::permissions(one, fs::perms::none);
    EXPECT_EQ(manager.isReadableFile(one), root);
    EXPECT_EQ(manager.isWritableFile(one), root);
}

TEST_F(PosixFileManagerTest, ReadsRegularFilesUpToAMaximumSize) {
    const std::string three = folder.write("file", std::string("a\0b", 3));
    EXPECT_EQ(manager.readFile(three, 3).contents, std::string("a\0b", 3));
    EXPECT_THAT(manager.readFile(three, 2).reason, HasSubstr("larger than 2 bytes"));
    EXPECT_GT(manager.readFile("/proc/self/status", 1 << 20).contents.value_or("").size(), 100U)
        << "the system reports size 0";
    EXPECT_THAT(manager.readFile("/proc/self/status", 10).reason, HasSubstr("larger"));
}

TEST_F(PosixFileManagerTest, ReturnsTheHomeFolderInTheEnvironmentIfItIsAbsolute) {
    using Value = std::optional<std::string>;
    for (const Value& value : {Value("/somewhere"), Value(), Value("relative"), Value("")}) {
        const test::ScopedEnvironment home("HOME", value);
        EXPECT_EQ(manager.homeDirectory() == "/somewhere", value == "/somewhere");
        EXPECT_THAT(manager.homeDirectory(), testing::StartsWith("/"));
    }
}

TEST_F(PosixFileManagerTest, WritingKeepsModeAndOwnerAndAppliesTheUmaskToNewFiles) {
    const mode_t mask = ::umask(027);
    const std::string path = file("file");
    const auto mode = [&] { return statusOf(path).st_mode & 07777U; };
    EXPECT_TRUE(manager.writeFileAtomically(path, "new"));
    EXPECT_EQ(mode(), 0640U);
    for (const mode_t kept : {0444U, 0666U}) {
        ASSERT_EQ(::chmod(path.c_str(), kept), 0);
        EXPECT_TRUE(manager.writeFileAtomically(path, "newer"));
        EXPECT_EQ(mode(), kept);
    }
    ::umask(mask);
    if (::geteuid() != 0)
        return;
    ASSERT_EQ(::chown(path.c_str(), 12, 34), 0);
    EXPECT_TRUE(manager.writeFileAtomically(path, "newest"));
    EXPECT_EQ(std::pair(statusOf(path).st_uid, statusOf(path).st_gid), std::pair(12U, 34U));
}

TEST_F(PosixFileManagerTest, WritingFollowsLinksAndKeepsThem) {
    folder.write("away/target", "old");
    // The file that is written, or null if writing must fail.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"relative", "away/target", "away/target"},
        {"chain", "relative", "away/target"},
        {"dangling", "away/later", "away/later"},
        {"broken", "nowhere/file", nullptr},
        {"loop", "loop", nullptr}};
    for (const auto& [link, to, written] : cases) {
        fs::create_symlink(to, file(link));
        const auto before = names();
        EXPECT_EQ(manager.writeFileAtomically(file(link), link), written != nullptr) << link;
        EXPECT_TRUE(fs::is_symlink(file(link))) << link;
        EXPECT_EQ(names(), before);
        EXPECT_TRUE(!written || contents(file(written)) == link) << link;
    }
    fs::create_symlink("away/target", file("0"));
    for (int links = 1; links <= 40; ++links)
        fs::create_symlink(std::to_string(links - 1), file(std::to_string(links)));
    const std::string target = fs::canonical(file("away/target"));
    EXPECT_TRUE(manager.writeFileAtomically(file("39"), "40 links"));
    EXPECT_FALSE(manager.writeFileAtomically(file("40"), "41 links"));
    EXPECT_EQ(manager.resolvingSymbolicLinks(file("39")), target);
    EXPECT_EQ(manager.resolvingSymbolicLinks(file("40")), file("40"));
}

TEST_F(PosixFileManagerTest, WritingReplacesOnlyRegularFiles) {
    fs::create_directories(file("folder"));
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
    const std::string longest(NAME_MAX, 'n');
    for (const std::string& name :
         {std::string("folder"), std::string("pipe"), std::string("missing/file"), longest + "n"})
        EXPECT_FALSE(manager.writeFileAtomically(file(name), "x")) << name;
    EXPECT_EQ(names(), (Names{"folder", "pipe"}));
    EXPECT_TRUE(manager.writeFileAtomically(file(longest), "x"));
}

TEST_F(PosixFileManagerTest, AFailingSystemCallLeavesTheOldOrTheNewFile) {
    const std::string path = file("file");
    for (const int error : {ENOSPC, EIO, EDQUOT, EACCES})
        for (const std::string old : {"old", ""})
            failEachCallOf(error, 6, [&](auto& files) {
                fs::remove(path);
                if (!old.empty())
                    folder.write("file", old);
                const bool saved = files.writeFileAtomically(path, "the new list");
                EXPECT_EQ(contents(path), saved ? "the new list" : old);
                EXPECT_EQ(names(), saved || !old.empty() ? Names{"file"} : Names());
                return saved;
            });
}

TEST_F(PosixFileManagerTest, WritingRemovesOnlyTheLeftoversOfDeadWriters) {
    expectOnlyUnlockedLeftoversAreRemoved(
        folder.path(), [&](auto& files) { return files.writeFileAtomically(file("file"), "1"); });
    folder.write(".halvex-save-of-another-file", "");
    EXPECT_TRUE(manager.writeFileAtomically(file("file"), "2"));
    EXPECT_EQ(names(), (Names{".halvex-save-of-another-file", "file"}));
}

TEST_F(PosixFileManagerTest, ConcurrentWritersSucceedAndDoNotMixTheirContents) {
    const std::string path = file("file");
    std::vector<std::jthread> writers;
    for (char letter = 'a'; letter < 'e'; ++letter)
        writers.emplace_back([&, letter] {
            for (int i = 0; i < 50; ++i)
                EXPECT_TRUE(manager.writeFileAtomically(path, std::string(10'000, letter)));
        });
    writers.clear();
    const std::string last = contents(path);
    EXPECT_EQ(last, std::string(10'000, last.at(0)));
    EXPECT_EQ(names(), Names{"file"});
}

} // namespace
