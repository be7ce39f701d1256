#include "tests/platform/posix/FileManagerFixture.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <sched.h>
#include <sys/mount.h>

namespace {

using namespace test;

/// Returns a line for everything below @p root: its path, mode, time and a hash of its contents.
Names describe(const fs::path& root) {
    Names result;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const auto status = test::statusOf(entry.path());
        std::string line = entry.path().lexically_relative(root).string();
        if (entry.is_symlink())
            line += " -> " + fs::read_symlink(entry.path()).string();
        else
            line += ' ' + std::to_string(status.st_mode) + ' ' + std::to_string(status.st_mtime);
        if (entry.is_regular_file() && !entry.is_symlink())
            line += ' ' + std::to_string(std::hash<std::string>()(test::contents(entry.path())));
        result.insert(line);
    }
    return result;
}

class PosixFileManagerTrees : public test::FileManagerFixture {
  protected:
    void SetUp() override {
        folder.write("from/X.menu/Contents/Info.plist", "<plist/>");
        folder.write("from/X.menu/Contents/Linux/X", std::string(150'000, 'x'));
        folder.write("from/outside", "stays");
        fs::create_directories(X + "/Contents/Empty");
        fs::create_symlink("Linux/X", X + "/Contents/code");
        fs::create_symlink("../../outside", X + "/out");
        fs::create_symlink(file("from"), X + "/Contents/up");
        fs::create_symlink("nowhere", X + "/dangling");
        fs::permissions(X + "/Contents/Linux/X", fs::perms(0751));
        fs::permissions(X + "/Contents/Empty", fs::perms(0500));
        struct timespec times[2] = {{1'000'000'000, 0}, {1'100'000'000, 0}};
        ASSERT_EQ(::utimensat(AT_FDCWD, (X + "/Contents/Info.plist").c_str(), times, 0), 0);
        fs::create_directories(to);
    }

    const std::string X = file("from/X.menu");
    const std::string to = file("to");
    const std::string copy = to + "/X.menu";
};

TEST_F(PosixFileManagerTrees, CopyingKeepsContentsModesTimesAndLinks) {
    EXPECT_TRUE(manager.copyItem(X, copy));
    EXPECT_EQ(describe(copy), describe(X));
    EXPECT_TRUE(manager.copyItem(X + "/out", to + "/link"));
    EXPECT_EQ(fs::read_symlink(to + "/link"), "../../outside");
    fs::permissions(file("from/outside"), fs::perms(06644));
    EXPECT_TRUE(manager.copyItem(file("from/outside"), to + "/file"));
    EXPECT_EQ(fs::status(to + "/file").permissions(), fs::perms(0644));
    fs::permissions(X, fs::perms(0500));
    EXPECT_TRUE(manager.copyItem(X, to + "/readonly"));
    EXPECT_EQ(fs::status(to + "/readonly").permissions(), fs::perms(0500));
    EXPECT_EQ(namesIn(to), (Names{"X.menu", "link", "file", "readonly"}));
    EXPECT_EQ(log.take().size(), 0U);
    fs::permissions(X, fs::perms(0700));
}

TEST_F(PosixFileManagerTrees, AFailedCopyReplacesNothingAndLeavesNothing) {
    folder.write("to/taken", "1");
    fs::create_symlink("nowhere", to + "/link");
    ASSERT_TRUE(manager.copyItem(X, to + "/Pipe.menu"));
    ASSERT_EQ(::mkfifo((to + "/Pipe.menu/zpipe").c_str(), 0600), 0);
    const Names before = describe(folder.path());
    const std::pair<std::string, std::string> cases[] = {{X, to + "/taken"},
                                                         {X, to + "/Pipe.menu"},
                                                         {X, to + "/link"},
                                                         {X + "/none", copy},
                                                         {X, to + "/none/X.menu"},
                                                         {X, X + "/Contents/Empty/X.menu"},
                                                         {to + "/Pipe.menu", copy},
                                                         {X, ""},
                                                         {"", copy},
                                                         {X, to + "/.."}};
    for (const auto& [source, destination] : cases) {
        EXPECT_FALSE(manager.copyItem(source, destination)) << source << ' ' << destination;
        EXPECT_EQ(describe(folder.path()).size(), before.size()) << source << ' ' << destination;
    }
    EXPECT_TRUE(fs::is_symlink(to + "/link"));
}

TEST_F(PosixFileManagerTrees, AFailingSystemCallLeavesACompleteCopyOrNone) {
    const Names whole = describe(X);
    failEachCallOf(ENOSPC, 20, [&](auto& files) {
        fs::remove_all(copy);
        const bool copied = files.copyItem(X, copy);
        EXPECT_EQ(namesIn(to), copied ? Names{"X.menu"} : Names());
        EXPECT_TRUE(!copied || describe(copy) == whole);
        return copied;
    });
}

TEST_F(PosixFileManagerTrees, OneOfSeveralConcurrentCopiersSucceeds) {
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> done = 0;
        std::vector<std::jthread> copiers;
        for (int i = 0; i < 4; ++i)
            copiers.emplace_back([&] { done += manager.copyItem(X, copy) ? 1 : 0; });
        copiers.clear();
        EXPECT_EQ(done, 1);
        EXPECT_EQ(describe(copy), describe(X));
        EXPECT_EQ(namesIn(to), Names{"X.menu"});
        EXPECT_TRUE(manager.removeItem(copy));
    }
}

TEST_F(PosixFileManagerTrees, AKilledRemovalLeavesACompleteFolderOrNone) {
    const Names whole = describe(X);
    // The process is killed after this time, which grows until it completes and is then halved.
    std::chrono::microseconds limit(500);
    bool leftovers = false;
    for (int round = 0; round < 40; ++round) {
        manager.copyItem(X, copy);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            manager.removeItem(copy);
            ::pause();
        }
        std::this_thread::sleep_for(limit);
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        const bool isThere = fs::exists(copy);
        ASSERT_TRUE(!isThere || describe(copy) == whole);
        limit = isThere ? limit * 5 / 4 : limit / 2;
        leftovers = leftovers || namesIn(to).size() > (isThere ? 1U : 0U);
    }
    EXPECT_TRUE(leftovers) << "no process was killed in the middle";
    manager.copyItem(X, copy);
    EXPECT_TRUE(manager.removeItem(copy));
    EXPECT_EQ(namesIn(to), Names()) << "the next removal removes leftovers";
}

TEST_F(PosixFileManagerTrees, CopyingRemovesOnlyTheLeftoversOfDeadCopiers) {
    expectOnlyUnlockedLeftoversAreRemoved(to, [&](auto& files) {
        files.removeItem(copy);
        return files.copyItem(X, copy);
    });
    EXPECT_EQ(namesIn(to), Names{"X.menu"});
}

TEST_F(PosixFileManagerTrees, RemovingAFolderRemovesItsContentsAndFollowsNoLinks) {
    fs::create_symlink(X, file("link"));
    EXPECT_TRUE(manager.removeItem(file("link")));
    EXPECT_TRUE(fs::exists(X + "/Contents/Info.plist"));
    for (const std::string& path :
         {std::string(), std::string("/"), X + "/..", X + "/.", file("none")})
        EXPECT_FALSE(manager.removeItem(path)) << path;
    EXPECT_TRUE(manager.removeItem(X + '/'));
    EXPECT_EQ(namesIn(file("from")), Names{"outside"}) << "targets of links are not removed";
}

TEST_F(PosixFileManagerTrees, AFolderThatCannotBeRemovedCompletelyIsUnchanged) {
    // Mounts disappear with this process.
    const bool canMount = ::unshare(CLONE_NEWNS) == 0 &&
                          ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    const struct {
        std::string make, end; // shell commands of the real user
        bool isPossible = true;
    } obstacles[] = {
        {"chmod 500 b", "chmod 700 b"},
        {"chown root b b/c && chmod 1777 b", "chmod 777 b"}, // sticky
        {"chattr +i b/c", "chattr -i b/c"},
        {"mount --bind a b/c", "umount b/c", canMount},
    };
    const auto setUser = [](uid_t user) { return ::getuid() != 0 || ::seteuid(user) == 0; };
    std::string missing;
    for (const auto& [make, end, isPossible] : obstacles) {
        SCOPED_TRACE(make);
        ASSERT_TRUE(setUser(65534)) << "permissions do not stop root";
        test::TemporaryFolder own; // belongs to the user that was just set
        const std::string path = own.file("Y.menu");
        for (const char* name : {"Y.menu/a", "Y.menu/b/c", "Y.menu/d/e", "new/f"})
            own.write(name, "1");
        ASSERT_TRUE(setUser(0));
        const std::string shell = "cd '" + path + "' && exec 2>/dev/null && ";
        if (!isPossible || std::system((shell + make).c_str()) != 0) {
            missing += " (" + make + ")";
            continue;
        }
        const Names before = describe(own.path());
        ASSERT_TRUE(setUser(65534));
        EXPECT_FALSE(manager.removeItem(path));
        EXPECT_EQ(manager.replaceItem(own.file("new"), path), platform::Replacement::NotRemoved);
        ASSERT_TRUE(setUser(0));
        EXPECT_EQ(describe(own.path()), before);
        EXPECT_EQ(std::system((shell + end).c_str()), 0);
        ASSERT_TRUE(setUser(65534));
        EXPECT_EQ(manager.replaceItem(own.file("new"), path), platform::Replacement::Replaced);
        EXPECT_EQ(namesIn(path), Names{"f"});
        EXPECT_TRUE(manager.removeItem(path));
        EXPECT_EQ(namesIn(own.path()), Names{"new"});
        ASSERT_TRUE(setUser(0));
    }
    if (!missing.empty())
        GTEST_SKIP() << "not tested, because this user or file system cannot create it:" << missing;
}

TEST_F(PosixFileManagerTrees, AFailingSystemCallRemovesOrReplacesAWholeFolderOrNothing) {
    const auto recovery = Recovery::Possible;
    const Names whole = describe(X);
    const auto restore = [&] {
        if (!fs::exists(copy))
            manager.copyItem(X, copy);
    };
    failEachCallOf(
        EPERM, 15,
        [&](auto& files) {
            restore();
            const bool removed = files.removeItem(copy);
            EXPECT_EQ(namesIn(to), removed ? Names() : Names{"X.menu"});
            EXPECT_TRUE(removed || describe(copy) == whole);
            return removed;
        },
        recovery);
    folder.write("new/Contents/Info.plist", "<plist/>");
    const Names replaced = describe(file("new"));
    using platform::Replacement;
    failEachCallOf(
        ENOSPC, 25,
        [&](auto& files) {
            fs::remove_all(copy);
            restore();
            const auto result = files.replaceItem(file("new"), copy);
            EXPECT_EQ(namesIn(to), result == Replacement::NotCopied ? Names() : Names{"X.menu"});
            EXPECT_TRUE(result != Replacement::Replaced || describe(copy) == replaced);
            EXPECT_TRUE(result != Replacement::NotRemoved || describe(copy) == whole);
            return result == Replacement::Replaced;
        },
        recovery);
}

TEST_F(PosixFileManagerTrees, AKilledReplacementLeavesTheOldFolderOrTheNewOne) {
    folder.write("new/Contents/Info.plist", "<plist/>");
    const Names old = describe(X);
    const Names replaced = describe(file("new"));
    ASSERT_TRUE(manager.copyItem(X, copy));
    bool leftovers = false;
    int status = 0;
    for (int call = 1; status == 0; ++call) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            FailingCalls calls(call, FailingCalls::kExit, FailingCalls::Times::Once);
            PosixFileManager({}, calls).replaceItem(file("new"), copy);
            ::_exit(1);
        }
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        const Names left = describe(copy);
        EXPECT_TRUE(left == old || left == replaced) << call;
        leftovers = leftovers || namesIn(to).size() > 1;
    }
    EXPECT_EQ(describe(copy), replaced);
    EXPECT_TRUE(leftovers) << "no process was killed in the middle";
    EXPECT_EQ(namesIn(to), Names{"X.menu"}) << "the next replacement removes leftovers";
}

TEST_F(PosixFileManagerTrees, ReplacesEveryKindOfItemUnlessThereIsNone) {
    using platform::Replacement;
    fs::permissions(X, fs::perms(0500));
    EXPECT_EQ(manager.replaceItem(X, copy), Replacement::NotRemoved);
    folder.write("to/file", "1");
    fs::create_symlink("nowhere", to + "/link");
    for (const std::string name : {"/file", "/link", "/file"}) {
        EXPECT_EQ(manager.replaceItem(X, to + name), Replacement::Replaced);
        EXPECT_EQ(describe(to + name), describe(X)) << name;
        EXPECT_EQ(fs::status(to + name).permissions(), fs::perms(0500));
    }
    EXPECT_EQ(manager.replaceItem(file("none"), to + "/link"), Replacement::NotCopied);
    EXPECT_EQ(namesIn(to), Names{"file"});
    fs::permissions(X, fs::perms(0700));
}

} // namespace
