#include "platform/posix/PosixFileManager.h"

#include "tests/support/FailingCalls.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
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
using testing::IsEmpty;
using Listing = std::set<std::string>;

/// Everything below @p root with its mode, time and a hash of its contents, one line each.
Listing described(const fs::path& root) {
    Listing result;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        struct stat status {};
        EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
        std::string line = entry.path().lexically_relative(root).string();
        if (entry.is_symlink()) {
            line += " -> " + fs::read_symlink(entry.path()).string();
        } else {
            line += ' ' + std::to_string(status.st_mode) + ' ' + std::to_string(status.st_mtime);
            if (entry.is_regular_file()) {
                std::ifstream file(entry.path());
                const std::string bytes{std::istreambuf_iterator<char>(file), {}};
                line += ' ' + std::to_string(std::hash<std::string>()(bytes));
            }
        }
        result.insert(line);
    }
    return result;
}

class PosixFileManagerTrees : public testing::Test {
  protected:
    void SetUp() override {
        folder.write("from/X.menu/Contents/Info.plist", "<plist/>");
        folder.write("from/X.menu/Contents/Linux/X", std::string(150'000, 'x'));
        folder.write("from/outside", "stays");
        fs::create_directories(X + "/Contents/Empty");
        fs::create_symlink("Linux/X", X + "/Contents/code");
        fs::create_symlink("../../outside", X + "/out");
        fs::create_symlink(folder.file("from"), X + "/Contents/up");
        fs::create_symlink("nowhere", X + "/dangling");
        fs::permissions(X + "/Contents/Linux/X", fs::perms(0751));
        fs::permissions(X + "/Contents/Empty", fs::perms(0500));
        struct timespec times[2] = {{1'000'000'000, 0}, {1'100'000'000, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, (X + "/Contents/Info.plist").c_str(), times, 0), 0);
        fs::create_directories(to);
    }
    Listing namesInTo() const {
        Listing result;
        for (const auto& entry : fs::directory_iterator(to))
            result.insert(entry.path().filename());
        return result;
    }
    /// Runs this in a process of its own, and kills it after a time.
    template <class Code>
    void killed(std::chrono::microseconds after, Code code) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            for (;;)
                code();
        std::this_thread::sleep_for(after);
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    }

    test::RecordingLog log;
    test::TemporaryFolder folder;
    PosixFileManager manager;
    const std::string X = folder.file("from/X.menu");
    const std::string to = folder.file("to");
    const std::string copy = to + "/X.menu";
};

TEST_F(PosixFileManagerTrees, ACopyHasEverythingAsItWas) {
    EXPECT_TRUE(manager.copyItem(X, copy));
    EXPECT_EQ(described(copy), described(X));
    EXPECT_TRUE(manager.copyItem(X + "/out", to + "/link"));
    EXPECT_EQ(fs::read_symlink(to + "/link"), "../../outside");
    fs::permissions(folder.file("from/outside"), fs::perms(06644));
    EXPECT_TRUE(manager.copyItem(folder.file("from/outside"), to + "/file"));
    EXPECT_EQ(fs::status(to + "/file").permissions(), fs::perms(0644));
    fs::permissions(X, fs::perms(0500));
    EXPECT_TRUE(manager.copyItem(X, to + "/readonly"));
    EXPECT_EQ(fs::status(to + "/readonly").permissions(), fs::perms(0500));
    EXPECT_EQ(namesInTo(), (Listing{"X.menu", "link", "file", "readonly"}));
    EXPECT_EQ(log.take().size(), 0U);
    fs::permissions(X, fs::perms(0700));
}

TEST_F(PosixFileManagerTrees, NothingIsReplacedAndNoPartOfACopyIsLeft) {
    folder.write("to/taken", "1");
    fs::create_symlink("nowhere", to + "/link");
    ASSERT_TRUE(manager.copyItem(X, to + "/Pipe.menu"));
    ASSERT_EQ(::mkfifo((to + "/Pipe.menu/zpipe").c_str(), 0600), 0);
    const Listing before = described(folder.path());
    const std::pair<std::string, std::string> cases[] = {
        {X, to + "/taken"},
        {X, to + "/Pipe.menu"},
        {X, to + "/link"},
        {X + "/none", copy},
        {X, to + "/none/X.menu"},
        {to + "/Pipe.menu", copy},
        {X, X + "/Contents/Empty/X.menu"},
        {X, ""},
        {X, to + "/.."},
        {"", copy},
    };
    for (const auto& [source, destination] : cases) {
        EXPECT_FALSE(manager.copyItem(source, destination)) << source << ' ' << destination;
        Listing after = described(folder.path());
        EXPECT_EQ(after.size(), before.size()) << source << ' ' << destination;
    }
    EXPECT_TRUE(fs::is_symlink(to + "/link"));
}

TEST_F(PosixFileManagerTrees, WhicheverSystemCallFailsACopyIsWholeOrNotThere) {
    const Listing whole = described(X);
    using Times = test::FailingCalls::Times;
    for (const Times times : {Times::Once, Times::ForGood}) {
        int call = 0;
        for (bool failed = true; failed;) {
            SCOPED_TRACE(testing::Message() << "call " << ++call);
            fs::remove_all(copy);
            test::FailingCalls calls(call, ENOSPC, times);
            const bool copied = PosixFileManager({}, calls).copyItem(X, copy);
            failed = calls.failed();
            ASSERT_LT(call, 200);
            EXPECT_TRUE(copied || failed);
            EXPECT_EQ(namesInTo(), copied ? Listing{"X.menu"} : Listing());
            if (copied) {
                EXPECT_EQ(described(copy), whole);
            }
            EXPECT_EQ(log.take().size(), copied && failed ? 1U : 0U)
                << "only a folder that could not be flushed is worth a line";
        }
        EXPECT_GT(call, 20);
    }
}

TEST_F(PosixFileManagerTrees, CopiersAtOnceLeaveOneWholeCopy) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> done = 0;
        std::vector<std::thread> copiers;
        for (int i = 0; i < 4; ++i)
            copiers.emplace_back([&] { done += manager.copyItem(X, copy) ? 1 : 0; });
        for (auto& copier : copiers)
            copier.join();
        EXPECT_EQ(done, 1);
        EXPECT_EQ(described(copy), described(X));
        EXPECT_EQ(namesInTo(), Listing{"X.menu"});
        EXPECT_TRUE(manager.removeItem(copy));
    }
}

TEST_F(PosixFileManagerTrees, ProcessesKilledAtAnyMomentLeaveAWholeCopyOrNone) {
    const Listing whole = described(X);
    std::mt19937 random(5);
    bool leftovers = false;
    int changes = 0;
    for (int round = 0; round < 80; ++round) {
        // What is killed is copying when there is no copy, else removing it, at any part of the
        // time that this takes now.
        const auto act = [&](bool copies, const std::string& path) {
            return copies ? manager.copyItem(X, path) : manager.removeItem(path);
        };
        const bool there = fs::exists(copy);
        const std::string measured = folder.file("measured");
        if (there)
            act(true, measured);
        const auto start = std::chrono::steady_clock::now();
        ASSERT_TRUE(act(!there, measured));
        const std::chrono::duration<double, std::micro> took =
            std::chrono::steady_clock::now() - start;
        fs::remove_all(measured);
        const double part = static_cast<double>(random() % 200) / 100;
        killed(std::chrono::microseconds(static_cast<int>(took.count() * part)), [&] {
            act(!there, copy);
            ::pause();
        });
        if (fs::exists(copy)) {
            ASSERT_EQ(described(copy), whole);
        }
        changes += fs::exists(copy) != there ? 1 : 0;
        leftovers = leftovers || namesInTo().size() > (fs::exists(copy) ? 1U : 0U);
    }
    EXPECT_GT(changes, 2);
    EXPECT_LT(changes, 78);
    EXPECT_TRUE(leftovers) << "some were killed in the middle";
    manager.copyItem(X, copy);
    EXPECT_TRUE(manager.removeItem(copy));
    EXPECT_TRUE(manager.copyItem(X, copy));
    EXPECT_EQ(namesInTo(), Listing{"X.menu"}) << "who comes after takes them away";
}

TEST_F(PosixFileManagerTrees, ACopyUnderWayIsNobodysLeftover) {
    class Interrupted final : public platform::posix::SystemCalls {
        int renameWithoutReplacing(int, const std::string&, int, const std::string&) override {
            ::_exit(0);
        }
    } interrupted;
    const pid_t child = ::fork();
    if (child == 0)
        PosixFileManager({}, interrupted).copyItem(X, copy);
    ::waitpid(child, nullptr, 0);
    const Listing left = namesInTo();
    ASSERT_EQ(left.size(), 1U);
    const int maker = ::open((to + '/' + *left.begin()).c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(maker, LOCK_EX), 0);
    EXPECT_TRUE(manager.copyItem(X, copy));
    EXPECT_EQ(namesInTo().size(), 2U) << "its maker still holds it";
    ::close(maker);
    EXPECT_TRUE(manager.removeItem(copy));
    EXPECT_TRUE(manager.copyItem(X, copy));
    EXPECT_EQ(namesInTo(), Listing{"X.menu"});
}

TEST_F(PosixFileManagerTrees, RemovalTakesEverythingAndFollowsNoLink) {
    fs::create_symlink(X, folder.file("link"));
    EXPECT_TRUE(manager.removeItem(folder.file("link")));
    EXPECT_TRUE(fs::exists(X + "/Contents/Info.plist"));
    for (const std::string& path : {std::string(), std::string("/"), X + "/..", X + "/.",
                                    folder.file("none"), X + "/none/none"})
        EXPECT_FALSE(manager.removeItem(path)) << path;
    EXPECT_TRUE(manager.removeItem(X + '/'));
    EXPECT_EQ(described(folder.file("from")).size(), 1U) << "what links led to stays";
}

TEST_F(PosixFileManagerTrees, AFolderThatCannotGoWholeStaysWhole) {
    if (::geteuid() == 0 && ::seteuid(65534) != 0)
        GTEST_SKIP() << "nothing is refused to this user";
    test::TemporaryFolder own; // belongs to whoever is asked now
    const std::string path = own.file("Y.menu");
    own.write("Y.menu/a", "1");
    own.write("Y.menu/b/c", "1");
    fs::permissions(path + "/b", fs::perms(0500));
    const Listing before = described(own.path());
    EXPECT_FALSE(manager.removeItem(path));
    EXPECT_EQ(described(own.path()), before);
    fs::permissions(path + "/b", fs::perms(0700));
    EXPECT_TRUE(manager.removeItem(path));
    EXPECT_THAT(described(own.path()), IsEmpty());
    ASSERT_EQ(::seteuid(::getuid()), 0);
}

} // namespace
