#include "platform/posix/PosixFileManager.h"

#include "tests/support/PollingMainThread.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using platform::posix::PosixFileManager;

class PosixFileManagerWatchTest : public testing::Test {
  protected:
    std::unique_ptr<platform::FileWatch> watch(const std::string& name) {
        return manager.watchFile(folder.file(name), [this] { ++calls; });
    }
    /// Whether the handler was called after @p change.
    bool tells(const std::function<void()>& change) {
        loop.runUntil([] { return false; }, 20ms);
        calls = 0;
        change();
        return loop.runUntil([this] { return calls > 0; }, 2s);
    }
    void replace(const std::string& name, std::string_view text) {
        folder.write("beside", text);
        fs::rename(folder.file("beside"), folder.file(name));
    }

    test::TemporaryFolder folder;
    test::PollingMainThread loop;
    PosixFileManager manager;
    int calls = 0;
};

TEST_F(PosixFileManagerWatchTest, TellsOfEverythingThatHappensToTheFile) {
    const auto watching = watch("file");
    const auto write = [&] { folder.write("file", "same size"); };
    const struct {
        const char* what;
        std::function<void()> change;
    } changes[] = {
        {"appears", write},
        {"is written again", write},
        {"grows", [&] { std::ofstream(folder.file("file"), std::ios::app) << "more"; }},
        {"is replaced", [&] { replace("file", "1"); }},
        {"is replaced again", [&] { replace("file", "1"); }},
        {"is written after that", write},
        {"is saved", [&] { manager.writeFileAtomically(folder.file("file"), "2"); }},
        {"is moved away", [&] { fs::rename(folder.file("file"), folder.file("gone")); }},
        {"is moved back", [&] { fs::rename(folder.file("gone"), folder.file("file")); }},
        {"goes", [&] { fs::remove(folder.file("file")); }},
    };
    for (const auto& [what, change] : changes)
        EXPECT_TRUE(tells(change)) << what;
    fs::create_symlink("target", folder.file("file"));
    EXPECT_TRUE(tells([&] { folder.write("target", "1"); })) << "a link's target appears";
    EXPECT_TRUE(tells([&] { folder.write("target", "22"); })) << "the link's target changes";
    fs::create_symlink("other", folder.file("beside"));
    folder.write("other", "3");
    EXPECT_TRUE(tells([&] { fs::rename(folder.file("beside"), folder.file("file")); }))
        << "the link is replaced";
}

TEST_F(PosixFileManagerWatchTest, FollowsTheFoldersAbove) {
    const auto watching = watch("a/b/c/file");
    EXPECT_TRUE(tells([&] { folder.write("a/b/c/file", "1"); })) << "with all its folders";
    EXPECT_TRUE(tells([&] { fs::rename(folder.file("a/b"), folder.file("away")); }));
    EXPECT_TRUE(tells([&] { fs::rename(folder.file("away"), folder.file("a/b")); }));
    EXPECT_TRUE(tells([&] { folder.write("a/b/c/file", "2"); }));
    EXPECT_TRUE(tells([&] { fs::remove_all(folder.file("a")); }));
    fs::create_directories(folder.file("elsewhere/b/c"));
    EXPECT_TRUE(tells([&] {
        fs::create_directory_symlink("elsewhere", folder.file("a"));
        folder.write("elsewhere/b/c/file", "3");
    }));
    EXPECT_TRUE(tells([&] { fs::rename(folder.file("elsewhere/b"), folder.file("gone")); }));
}

TEST_F(PosixFileManagerWatchTest, ABurstEndsWithACallThatSeesTheLastChange) {
    std::string seen;
    const auto watching = manager.watchFile(folder.file("file"), [&] {
        seen = manager.readFile(folder.file("file"), 100).contents.value_or("none");
    });
    for (int i = 0; i < 2000; ++i) {
        if (i % 3 == 0)
            fs::remove(folder.file("file"));
        folder.write("file", std::to_string(i));
        if (i % 7 == 0)
            loop.runUntil([] { return false; }, 0ms);
    }
    EXPECT_TRUE(loop.runUntil([&] { return seen == "1999"; }, 2s)) << seen;
}

TEST_F(PosixFileManagerWatchTest, SleepsWhileOthersWriteTheirFiles) {
    folder.write("folder/file", "1");
    const auto watching = watch("folder/file");
    // Other programs may remove files beside the test's own folder meanwhile, but not every time.
    bool slept = false;
    for (int attempt = 0; attempt < 20 && !slept; ++attempt) {
        const int before = loop.wakeUps();
        folder.write("folder/neighbour", std::to_string(attempt));
        folder.write("folder/new" + std::to_string(attempt), "1");
        folder.write("other", "1");
        loop.runUntil([] { return false; }, 50ms);
        slept = loop.wakeUps() == before;
    }
    EXPECT_TRUE(slept);
    EXPECT_EQ(calls, 0);
}

TEST_F(PosixFileManagerWatchTest, AHandlerMayEndItsOwnWatch) {
    std::unique_ptr<platform::FileWatch> watching;
    watching = manager.watchFile(folder.file("file"), [&] {
        ++calls;
        watching.reset();
    });
    EXPECT_TRUE(tells([&] { folder.write("file", "1"); }));
    folder.write("file", "2");
    loop.runUntil([] { return false; }, 50ms);
    EXPECT_EQ(calls, 1);
}

} // namespace
