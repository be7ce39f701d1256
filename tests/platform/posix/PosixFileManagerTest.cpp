#include "platform/posix/PosixFileManager.h"

#include "tests/support/FailingCalls.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using platform::posix::PosixFileManager;
using platform::posix::SystemCalls;
using test::FailingCalls;
using testing::HasSubstr;

class PosixFileManagerTest : public testing::Test {
  protected:
    static std::string contents(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::set<std::string> names() const {
        std::set<std::string> result;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            result.insert(entry.path().filename());
        return result;
    }
    static mode_t mode(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    test::RecordingLog log;
    test::TemporaryFolder folder;
    PosixFileManager manager;
};

TEST_F(PosixFileManagerTest, SaysWhatIsThereAndFollowsLinks) {
    const std::string file = folder.write("file", "1");
    fs::create_symlink("file", folder.file("link"));
    fs::create_symlink(folder.path(), folder.file("folderlink"));
    fs::create_symlink("nothing", folder.file("dangling"));
    const struct {
        std::string path;
        bool exists;
        bool isDirectory;
    } cases[] = {{file, true, false},
                 {folder.file("link"), true, false},
                 {folder.path().string(), true, true},
                 {folder.file("folderlink"), true, true},
                 {folder.file("dangling"), false, false},
                 {folder.file("file/x"), false, false},
                 {"", false, false},
                 {file + std::string("\0x", 2), false, false}};
    for (const auto& [path, exists, isDirectory] : cases) {
        bool answer = !isDirectory;
        EXPECT_EQ(manager.fileExists(path, &answer), exists) << path;
        EXPECT_EQ(answer, isDirectory) << path;
        EXPECT_EQ(manager.isReadableFile(path), exists) << path;
        EXPECT_EQ(manager.isWritableFile(path), exists) << path;
    }
    const bool root = ::geteuid() == 0; // who may read everything
    fs::permissions(file, fs::perms::none);
    EXPECT_EQ(manager.isReadableFile(file), root);
    EXPECT_EQ(manager.isWritableFile(file), root);
}

TEST_F(PosixFileManagerTest, ReadsRegularFilesUpToTheSizeAsked) {
    const std::string file = folder.write("file", std::string("a\0b", 3));
    EXPECT_EQ(manager.readFile(file, 3).contents, std::string("a\0b", 3));
    EXPECT_THAT(manager.readFile(file, 2).reason, HasSubstr("larger than 2 bytes"));
    EXPECT_EQ(manager.readFile(folder.write("empty", ""), 0).contents, "");
    EXPECT_GT(manager.readFile("/proc/self/status", 1 << 20).contents.value_or("").size(), 100U)
        << "a file that says it is empty";
    EXPECT_THAT(manager.readFile("/proc/self/status", 10).reason, HasSubstr("larger"));

    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder.file("pipe"), folder.path().string(),
                                    std::string("/dev/zero"), folder.file("missing")}) {
        const auto result = manager.readFile(path, 100);
        EXPECT_FALSE(result) << path;
        EXPECT_NE(result.reason, "") << path;
    }
}

TEST_F(PosixFileManagerTest, TheLibraryFolderAloneLiesUnderTheRoot) {
    const PosixFileManager rooted(folder.path().string());
    fs::create_directories(folder.file("Library/x"));
    EXPECT_TRUE(rooted.fileExists("/Library", nullptr));
    EXPECT_TRUE(rooted.fileExists("/Library/x", nullptr));
    EXPECT_FALSE(rooted.fileExists("/Libraryx", nullptr));
    EXPECT_TRUE(rooted.fileExists(folder.path().string(), nullptr));
}

TEST_F(PosixFileManagerTest, TheHomeFolderIsTheEnvironmentsWhenThatIsAbsolute) {
    {
        const test::ScopedEnvironment home("HOME", "/somewhere");
        EXPECT_EQ(manager.homeDirectory(), "/somewhere");
    }
    for (const std::optional<std::string>& value :
         {std::optional<std::string>(), std::optional<std::string>("relative"),
          std::optional<std::string>("")}) {
        const test::ScopedEnvironment home("HOME", value);
        EXPECT_THAT(manager.homeDirectory(), testing::StartsWith("/"));
        EXPECT_NE(manager.homeDirectory(), "/somewhere");
    }
}

TEST_F(PosixFileManagerTest, AWrittenFileKeepsItsModeAndANewOneTakesTheMask) {
    const mode_t mask = ::umask(027);
    const std::string file = folder.file("file");
    EXPECT_TRUE(manager.writeFileAtomically(file, "new"));
    EXPECT_EQ(mode(file), 0640U);
    for (const mode_t kept : {0600U, 0444U, 0666U}) {
        ASSERT_EQ(::chmod(file.c_str(), kept), 0);
        EXPECT_TRUE(manager.writeFileAtomically(file, "newer"));
        EXPECT_EQ(mode(file), kept);
    }
    ::umask(mask);
    if (::geteuid() != 0)
        return;
    ASSERT_EQ(::chown(file.c_str(), 12, 34), 0);
    EXPECT_TRUE(manager.writeFileAtomically(file, "newest"));
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12U);
    EXPECT_EQ(status.st_gid, 34U);
}

TEST_F(PosixFileManagerTest, LinksAreFollowedAndStay) {
    fs::create_directories(folder.file("away"));
    folder.write("away/target", "old");
    fs::create_symlink("away/target", folder.file("relative"));
    fs::create_symlink(folder.file("relative"), folder.file("chain"));
    fs::create_symlink("away/later", folder.file("dangling"));
    fs::create_symlink("nowhere/file", folder.file("broken"));
    fs::create_symlink("loop", folder.file("loop"));
    const struct {
        const char* link;
        const char* target; // none when writing must fail
    } cases[] = {{"relative", "away/target"},
                 {"chain", "away/target"},
                 {"dangling", "away/later"},
                 {"broken", nullptr},
                 {"loop", nullptr}};
    for (const auto& [link, target] : cases) {
        const auto before = names();
        EXPECT_EQ(manager.writeFileAtomically(folder.file(link), link), target != nullptr) << link;
        EXPECT_TRUE(fs::is_symlink(folder.file(link))) << link;
        EXPECT_EQ(names(), before);
        if (target) {
            EXPECT_EQ(contents(folder.file(target)), link);
        }
    }
}

TEST_F(PosixFileManagerTest, OnlyRegularFilesAreReplaced) {
    fs::create_directories(folder.file("folder"));
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    const auto before = names();
    for (const char* name : {"folder", "pipe", "folder/", "missing/file", "pipe/file"})
        EXPECT_FALSE(manager.writeFileAtomically(folder.file(name), "x")) << name;
    EXPECT_EQ(names(), before);
    const std::string longest(NAME_MAX, 'n');
    EXPECT_TRUE(manager.writeFileAtomically(folder.file(longest), "x"));
    EXPECT_FALSE(manager.writeFileAtomically(folder.file(longest + "n"), "x"));
}

TEST_F(PosixFileManagerTest, WhicheverSystemCallFailsTheFileIsTheOldOrTheNewOne) {
    using Times = FailingCalls::Times;
    for (const int error : {ENOSPC, EIO, EDQUOT, EACCES})
        for (const Times times : {Times::Once, Times::ForGood})
            for (const std::optional<std::string>& old :
                 {std::optional<std::string>("old"), std::optional<std::string>()}) {
                int call = 0;
                for (bool failed = true; failed;) {
                    SCOPED_TRACE(testing::Message() << std::strerror(error) << ", call " << ++call);
                    const std::string path = folder.file("file");
                    fs::remove(path);
                    if (old)
                        folder.write("file", *old);
                    FailingCalls calls(call, error, times);
                    const bool saved =
                        PosixFileManager({}, calls).writeFileAtomically(path, "the new list");
                    failed = calls.failed();
                    ASSERT_LT(call, 50);
                    EXPECT_TRUE(saved || failed);
                    EXPECT_EQ(contents(path), saved ? "the new list" : old.value_or(""));
                    EXPECT_EQ(names(), saved || old ? std::set<std::string>{"file"}
                                                    : std::set<std::string>{});
                    EXPECT_EQ(log.take().size(), saved && failed ? 1U : 0U)
                        << "only a folder that could not be flushed is worth a line";
                }
                EXPECT_GT(call, 6) << "the last round, without a fault, comes after all calls";
            }
}

TEST_F(PosixFileManagerTest, LeftoversOfDeadWritersGoAndLiveOnesStay) {
    const std::string path = folder.file("file");
    class Interrupted final : public SystemCalls {
        int rename(int, const std::string&, const std::string&) override { ::_exit(0); }
    } interrupted;
    const auto leaveOneBehind = [&](const std::string& file) {
        const pid_t child = ::fork();
        if (child == 0)
            PosixFileManager({}, interrupted).writeFileAtomically(file, "unfinished");
        ::waitpid(child, nullptr, 0);
    };
    leaveOneBehind(path);
    const std::string leftover = folder.file(*names().begin());
    leaveOneBehind(folder.file("other"));
    ASSERT_EQ(names().size(), 2U);

    const int writer = ::open(leftover.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(writer, LOCK_EX), 0);
    EXPECT_TRUE(manager.writeFileAtomically(path, "1"));
    EXPECT_EQ(names().size(), 3U) << "a writer still holds the one, the other is another file's";
    ::close(writer);
    EXPECT_TRUE(manager.writeFileAtomically(path, "2"));
    EXPECT_FALSE(fs::exists(leftover));
    EXPECT_EQ(names().size(), 2U);
}

TEST_F(PosixFileManagerTest, WritersAtOnceNeitherMixNorFail) {
    const std::string path = folder.file("file");
    std::vector<std::thread> writers;
    for (char letter = 'a'; letter < 'e'; ++letter)
        writers.emplace_back([&, letter] {
            for (int i = 0; i < 50; ++i)
                EXPECT_TRUE(manager.writeFileAtomically(path, std::string(10'000, letter)));
        });
    for (auto& writer : writers)
        writer.join();
    const std::string last = contents(path);
    EXPECT_EQ(last, std::string(10'000, last.at(0)));
    EXPECT_EQ(names(), std::set<std::string>{"file"});
}

TEST_F(PosixFileManagerTest, AWriterKilledAtAnyMomentLeavesTheOldOrTheNewFile) {
    const std::string path = folder.file("file");
    const std::string lists[] = {std::string(200'000, 'a'), std::string(150'000, 'b')};
    ASSERT_TRUE(manager.writeFileAtomically(path, lists[0]));
    std::mt19937 random(3);
    bool leftovers = false;
    std::set<char> seen;
    for (int round = 0; round < 500; ++round) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            for (int i = round;; ++i)
                manager.writeFileAtomically(path, lists[i % 2]);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        const std::string found = contents(path);
        ASSERT_TRUE(found == lists[0] || found == lists[1]) << found.size();
        seen.insert(found.at(0));
        leftovers = leftovers || names().size() > 1;
    }
    EXPECT_EQ(seen.size(), 2U) << "the children did write";
    EXPECT_TRUE(leftovers) << "some were killed while they did";
    EXPECT_TRUE(manager.writeFileAtomically(path, "end"));
    EXPECT_EQ(names(), std::set<std::string>{"file"});
}

} // namespace
