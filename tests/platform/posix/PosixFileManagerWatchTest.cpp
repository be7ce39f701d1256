#include "tests/platform/posix/FileManagerFixture.h"

#include "tests/support/PollingMainThread.h"

#include <functional>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class PosixFileManagerWatchTest : public test::FileManagerFixture {
  protected:
    std::unique_ptr<platform::Watch> watch(const std::string& name) {
        return manager.watchFile(file(name), [this] { ++calls; });
    }
    void wait(std::chrono::milliseconds time) {
        loop.runUntil([] { return false; }, time);
    }
    /// Returns whether the handler is called after @p change.
    bool reports(const std::function<void()>& change) {
        wait(20ms);
        calls = 0;
        change();
        return loop.runUntil([this] { return calls > 0; }, 2s);
    }
    bool reportsWriting(const std::string& name) {
        return reports([&] { folder.write(name, "same size"); });
    }
    bool reportsMoving(const std::string& from, const std::string& to) {
        return reports([&] { fs::rename(file(from), file(to)); });
    }

    test::PollingMainThread loop;
    int calls = 0;
};

TEST_F(PosixFileManagerWatchTest, ReportsEveryChangeOfTheFile) {
    const auto watching = watch("file");
    EXPECT_TRUE(reportsWriting("file")) << "the file appears";
    EXPECT_TRUE(reportsWriting("file"));
    EXPECT_TRUE(reports([&] { std::ofstream(file("file"), std::ios::app) << "more"; }));
    for (int i = 0; i < 2; ++i) {
        folder.write("beside", "1");
        EXPECT_TRUE(reportsMoving("beside", "file")) << "the file is replaced, " << i;
    }
    EXPECT_TRUE(reportsWriting("file")) << "the new file is written";
    EXPECT_TRUE(reports([&] { manager.writeFileAtomically(file("file"), "2"); }));
    EXPECT_TRUE(reportsMoving("file", "gone"));
    EXPECT_TRUE(reportsMoving("gone", "file"));
    EXPECT_TRUE(reports([&] { fs::remove(file("file")); }));
    fs::create_symlink("target", file("file"));
    EXPECT_TRUE(reportsWriting("target")) << "the target of the link appears";
    EXPECT_TRUE(reportsWriting("target"));
    fs::create_symlink("other", file("beside"));
    folder.write("other", "3");
    EXPECT_TRUE(reportsMoving("beside", "file")) << "the link is replaced";
}

TEST_F(PosixFileManagerWatchTest, ReportsChangesOfTheFoldersAboveTheFile) {
    const auto watching = watch("a/b/c/file");
    EXPECT_TRUE(reportsWriting("a/b/c/file")) << "with all its folders";
    EXPECT_TRUE(reportsMoving("a/b", "away"));
    EXPECT_TRUE(reportsMoving("away", "a/b"));
    EXPECT_TRUE(reportsWriting("a/b/c/file"));
    EXPECT_TRUE(reports([&] { fs::remove_all(file("a")); }));
    folder.write("elsewhere/b/c/file", "3");
    EXPECT_TRUE(reports([&] { fs::create_directory_symlink("elsewhere", file("a")); }));
    EXPECT_TRUE(reportsMoving("elsewhere/b", "gone"));
}

TEST_F(PosixFileManagerWatchTest, ReportsChangesOfTheEntriesOfAFolder) {
    const auto watching = watch("folder");
    EXPECT_TRUE(reportsWriting("folder/one")) << "the folder appears";
    EXPECT_TRUE(reportsWriting("folder/one"));
    EXPECT_TRUE(reportsWriting("folder/two"));
    EXPECT_TRUE(reportsMoving("folder/one", "one"));
    EXPECT_TRUE(reportsMoving("one", "folder/one"));
    EXPECT_TRUE(reports([&] { fs::remove(file("folder/one")); }));
    EXPECT_TRUE(reportsMoving("folder", "away"));
    calls = 0;
    folder.write("away/two", "2");
    wait(50ms);
    EXPECT_EQ(calls, 0) << "it is another folder now";
    EXPECT_TRUE(reportsMoving("away", "folder"));
    EXPECT_TRUE(reportsWriting("folder/two"));
}

TEST_F(PosixFileManagerWatchTest, CallsTheHandlerAfterTheLastChangeOfABurst) {
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

TEST_F(PosixFileManagerWatchTest, DoesNotWakeWhenOtherFilesChange) {
    folder.write("folder/file", "1");
    const auto watching = watch("folder/file");
    // Other programs may change the folders above in the meantime, but not in every attempt.
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

TEST_F(PosixFileManagerWatchTest, LetsAHandlerDestroyItsWatch) {
    std::unique_ptr<platform::Watch> watching;
    watching = manager.watchFile(file("file"), [&] {
        ++calls;
        watching.reset();
    });
    EXPECT_TRUE(reportsWriting("file"));
    folder.write("file", "2");
    wait(50ms);
    EXPECT_EQ(calls, 1);
}

} // namespace
