#include "tests/platform/posix/RealFiles.h"

#include "tests/support/PollingMainThread.h"

#include <functional>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class PosixFileManagerWatchTest : public test::RealFiles {
  protected:
    std::unique_ptr<platform::Watch> watch(const std::string& name) {
        return manager.watchFile(file(name), [this] { ++calls; });
    }
    void wait(std::chrono::milliseconds time) {
        loop.runUntil([] { return false; }, time);
    }
    /// Whether the handler was called after @p change.
    bool tells(const std::function<void()>& change) {
        wait(20ms);
        calls = 0;
        change();
        return loop.runUntil([this] { return calls > 0; }, 2s);
    }
    bool tellsOfWriting(const std::string& name) {
        return tells([&] { folder.write(name, "same size"); });
    }
    bool tellsOfMoving(const std::string& from, const std::string& to) {
        return tells([&] { fs::rename(file(from), file(to)); });
    }

    test::PollingMainThread loop;
    int calls = 0;
};

TEST_F(PosixFileManagerWatchTest, TellsOfEverythingThatHappensToTheFile) {
    const auto watching = watch("file");
    EXPECT_TRUE(tellsOfWriting("file")) << "it appears";
    EXPECT_TRUE(tellsOfWriting("file"));
    EXPECT_TRUE(tells([&] { std::ofstream(file("file"), std::ios::app) << "more"; }));
    for (int i = 0; i < 2; ++i) {
        folder.write("beside", "1");
        EXPECT_TRUE(tellsOfMoving("beside", "file")) << "it is replaced, " << i;
    }
    EXPECT_TRUE(tellsOfWriting("file")) << "the new one is written";
    EXPECT_TRUE(tells([&] { manager.writeFileAtomically(file("file"), "2"); }));
    EXPECT_TRUE(tellsOfMoving("file", "gone"));
    EXPECT_TRUE(tellsOfMoving("gone", "file"));
    EXPECT_TRUE(tells([&] { fs::remove(file("file")); }));
    fs::create_symlink("target", file("file"));
    EXPECT_TRUE(tellsOfWriting("target")) << "a link's target appears";
    EXPECT_TRUE(tellsOfWriting("target"));
    fs::create_symlink("other", file("beside"));
    folder.write("other", "3");
    EXPECT_TRUE(tellsOfMoving("beside", "file")) << "the link is replaced";
}

TEST_F(PosixFileManagerWatchTest, FollowsTheFoldersAbove) {
    const auto watching = watch("a/b/c/file");
    EXPECT_TRUE(tellsOfWriting("a/b/c/file")) << "with all its folders";
    EXPECT_TRUE(tellsOfMoving("a/b", "away"));
    EXPECT_TRUE(tellsOfMoving("away", "a/b"));
    EXPECT_TRUE(tellsOfWriting("a/b/c/file"));
    EXPECT_TRUE(tells([&] { fs::remove_all(file("a")); }));
    folder.write("elsewhere/b/c/file", "3");
    EXPECT_TRUE(tells([&] { fs::create_directory_symlink("elsewhere", file("a")); }));
    EXPECT_TRUE(tellsOfMoving("elsewhere/b", "gone"));
}

TEST_F(PosixFileManagerWatchTest, ABurstEndsWithACallThatSeesTheLastChange) {
    std::string seen;
    const auto watching =
        manager.watchFile(file("file"), [&] { seen = test::contents(file("file")); });
    for (int i = 0; i < 2000; ++i) {
        if (i % 3 == 0)
            fs::remove(file("file"));
        folder.write("file", std::to_string(i));
        if (i % 7 == 0)
            wait(0ms);
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
        folder.write("folder/neighbour", "1");
        folder.write("folder/new" + std::to_string(attempt), "1");
        folder.write("other", "1");
        wait(50ms);
        slept = loop.wakeUps() == before;
    }
    EXPECT_TRUE(slept);
    EXPECT_EQ(calls, 0);
}

TEST_F(PosixFileManagerWatchTest, AHandlerMayEndItsOwnWatch) {
    std::unique_ptr<platform::Watch> watching;
    watching = manager.watchFile(file("file"), [&] {
        ++calls;
        watching.reset();
    });
    EXPECT_TRUE(tellsOfWriting("file"));
    folder.write("file", "2");
    wait(50ms);
    EXPECT_EQ(calls, 1);
}

} // namespace
