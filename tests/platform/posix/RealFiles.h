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

/// Of a link itself.
inline struct stat statusOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

/// Ends the process where something finished would get its name.
class CutOff final : public platform::posix::SystemCalls {
    int rename(int, const std::string&, const std::string&) override { ::_exit(0); }
    int renameWithoutReplacing(int, const std::string&, int, const std::string&) override {
        ::_exit(0);
    }
};

/// The system's files in a folder of the test's own, where "/Library" lies under "root".
class RealFiles : public testing::Test {
  protected:
    std::string file(std::string_view name) const { return folder.file(name); }
    Names names() const { return namesIn(folder.path()); }

    /// Lets the first system call of @p attempt fail, then the second, until it comes to its end
    /// before that; gives how many rounds there were. The attempt says whether it was successful.
    template <class Attempt>
    int whicheverCallFails(int error, FailingCalls::Times times, Attempt attempt) {
        int call = 0;
        for (bool failed = true; failed && call < 200;) {
            SCOPED_TRACE(testing::Message() << std::strerror(error) << ", call " << ++call);
            FailingCalls calls(call, error, times);
            PosixFileManager files({}, calls);
            const bool done = attempt(files);
            failed = calls.failed();
            EXPECT_TRUE(done || failed);
            EXPECT_EQ(log.take().size(), done && failed ? 1U : 0U)
                << "only a folder that could not be flushed is worth a line";
        }
        return call;
    }
    /// Runs this in a process of its own, and kills that after a time.
    template <class Code>
    static void killed(std::chrono::microseconds after, Code code) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            for (;;)
                code();
        std::this_thread::sleep_for(after);
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    }
    /// Makes something in @p place in a process that ends where what it made would get its name,
    /// and then twice more: first while somebody holds the leftover, as its maker would.
    template <class Make>
    void leftoverGoesWithItsMaker(const std::string& place, Make make) {
        const pid_t child = ::fork();
        if (child == 0) {
            CutOff calls;
            PosixFileManager files({}, calls);
            make(files);
        }
        ::waitpid(child, nullptr, 0);
        const Names left = namesIn(place);
        ASSERT_EQ(left.size(), 1U);
        const int maker = ::open((place + '/' + *left.begin()).c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::flock(maker, LOCK_EX), 0);
        EXPECT_TRUE(make(manager));
        EXPECT_EQ(namesIn(place).size(), 2U) << "its maker still holds it";
        ::close(maker);
        EXPECT_TRUE(make(manager));
        EXPECT_FALSE(namesIn(place).contains(*left.begin()));
    }

    using PosixFileManager = platform::posix::PosixFileManager;
    RecordingLog log;
    TemporaryFolder folder;
    PosixFileManager manager{folder.file("root")};
};

} // namespace test
