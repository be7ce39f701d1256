#pragma once

#include "platform/posix/PosixFileManager.h"
#include "tests/support/FailingCalls.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace test {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

inline Names namesIn(const fs::path& path) {
    Names result;
    for (const auto& entry : fs::directory_iterator(path))
        result.insert(entry.path().filename());
    return result;
}

/// Returns the status of the path itself, not of the target of a link.
inline struct stat statusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

/// Exits where a finished file or folder would get its final name.
class ExitingCalls final : public platform::posix::SystemCalls {
    int rename(int, const std::string&, const std::string&) override { ::_exit(0); }
    int renameWithoutReplacing(int, const std::string&, int, const std::string&) override {
        ::_exit(0);
    }
};

/// A file manager that maps "/Library" to "root/Library" in a temporary folder.
class FileManagerFixture : public testing::Test {
  protected:
    std::string file(std::string_view name) const { return folder.file(name); }
    Names names() const { return namesIn(folder.path()); }

    /// Whether an attempt may succeed although a call failed.
    enum class Recovery { OnlyFromFlushing, Possible };
    /// Runs @p attempt, which returns whether it succeeded, with its first system call failing,
    /// then its second and so on until it makes no more calls; and again with all later calls
    /// failing as well. There must be more than @p minimum calls.
    template <class Attempt>
    void failEachCallOf(int error, int minimum, Attempt attempt,
                        Recovery recovery = Recovery::OnlyFromFlushing) {
        for (const auto times : {FailingCalls::Times::Once, FailingCalls::Times::ForGood}) {
            int call = 0;
            for (bool failed = true; failed && call < 200;) {
                SCOPED_TRACE(testing::Message() << std::strerror(error) << ", call " << ++call);
                FailingCalls calls(call, error, times);
                PosixFileManager files({}, calls);
                const bool done = attempt(files);
                failed = calls.failed();
                EXPECT_TRUE(done || failed);
                const std::size_t logged = log.take().size();
                EXPECT_TRUE(recovery == Recovery::Possible || logged == (done && failed ? 1U : 0U))
                    << "only a failure to flush the folder is logged";
            }
            EXPECT_GT(call, minimum);
            EXPECT_LT(call, 200);
        }
    }
    /// Calls @p make, which creates something in @p place, in a process that exits before renaming
    /// it, then here with the leftover locked, as its creator would lock it, and then unlocked.
    template <class Make>
    void expectOnlyUnlockedLeftoversAreRemoved(const std::string& place, Make make) {
        const pid_t child = ::fork();
        if (child == 0) {
            ExitingCalls calls;
            PosixFileManager files({}, calls);
            make(files);
            ::_exit(1);
        }
        ::waitpid(child, nullptr, 0);
        const Names left = namesIn(place);
        ASSERT_EQ(left.size(), 1U);
        const int lock = ::open((place + '/' + *left.begin()).c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::flock(lock, LOCK_EX), 0);
        EXPECT_TRUE(make(manager));
        EXPECT_EQ(namesIn(place).size(), 2U) << "a locked entry is not a leftover";
        ::close(lock);
        EXPECT_TRUE(make(manager));
        EXPECT_FALSE(namesIn(place).contains(*left.begin()));
    }

    using PosixFileManager = platform::posix::PosixFileManager;
    RecordingLog log;
    TemporaryFolder folder;
    PosixFileManager manager{folder.file("root")};
};

} // namespace test
