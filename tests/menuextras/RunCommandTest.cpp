#include "menuextras/RunCommand.h"

#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/resource.h>

namespace {

TEST(RunCommand, LogsAndBeepsIfNoPipeCanBeOpened) {
    test::RecordingLog log;
    const test::TemporaryFolder folder;
    const std::string command = "echo 100%@ >" + folder.file("done");
    rlimit previous{};
    getrlimit(RLIMIT_NOFILE, &previous);
    const rlimit none{.rlim_cur = 3, .rlim_max = previous.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none); // opening any file now fails
    EXPECT_EQ(HalvexRunCommand::HalvexUtilGetPipeData(command), std::nullopt);
    HalvexRunCommand::HalvexRunNoOutput(command);
    setrlimit(RLIMIT_NOFILE, &previous);
    EXPECT_EQ(log.beeps(), 2);
    EXPECT_THAT(log.take(), testing::ElementsAre("Error opening pipe: " + command,
                                                 "Error opening pipe: " + command));
    EXPECT_FALSE(std::filesystem::exists(folder.file("done")));
}

} // namespace
