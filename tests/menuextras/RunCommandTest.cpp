#include "menuextras/RunCommand.h"

#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/resource.h>

using testing::ElementsAre;
using testing::Optional;

namespace {

std::optional<std::string> output(const std::string& command) {
    return HalvexRunCommand::HalvexUtilGetPipeData(command);
}

TEST(RunCommand, CollectsAllThatACommandWrites) {
    for (const std::size_t size : {0, 1, 511, 512, 513, 1000, 1024, 100'000}) {
        const std::string command = "head -c " + std::to_string(size) + " /dev/zero | tr '\\0' x";
        EXPECT_THAT(output(command), Optional(std::string(size, 'x')));
    }
    const std::pair<std::string, std::string> cases[] = {
        {"printf 'a\\0\\177\\n'", std::string("a\0\177\n", 4)},
        {"echo one; echo two >&2; exit 3", "one\n"},
        {"printf a; sleep 0.1; printf b", "ab"},
        {"kill -9 $$", ""},
        {"test '\xC3\xA9' = \"$(printf '\\303\\251')\" && echo same", "same\n"},
    };
    for (const auto& [command, text] : cases)
        EXPECT_THAT(output(command), Optional(text)) << command;
}

TEST(RunCommand, GivesNothingWhenTheOutputIsNotAscii) {
    test::RecordingLog log;
    EXPECT_EQ(output("printf 'caf\\303\\251'"), std::nullopt);
    EXPECT_EQ(output("head -c 1000 /dev/zero; printf '\\200'"), std::nullopt);
    EXPECT_THAT(log.take(), ElementsAre());
}

TEST(RunCommand, WaitsForACommandWhoseOutputNobodyWants) {
    const test::TemporaryFolder folder;
    const auto done = folder.file("done");
    HalvexRunCommand::HalvexRunNoOutput("sleep 0.2; : >'" + done + "'");
    EXPECT_TRUE(std::filesystem::exists(done));
    HalvexRunCommand::HalvexRunNoOutput("yes 2>/dev/null"); // ends, for nobody reads it
}

/// While it lives this process can open no further file.
class NoDescriptorsLeft {
  public:
    NoDescriptorsLeft() {
        getrlimit(RLIMIT_NOFILE, &previous_);
        const rlimit none{.rlim_cur = 3, .rlim_max = previous_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptorsLeft() { setrlimit(RLIMIT_NOFILE, &previous_); }
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;

  private:
    rlimit previous_{};
};

TEST(RunCommand, SaysSoAndBeepsWithoutAPipe) {
    test::RecordingLog log;
    const test::TemporaryFolder folder;
    const std::string command = "echo 100%@ >" + folder.file("done");
    {
        const NoDescriptorsLeft limit;
        EXPECT_EQ(output(command), std::nullopt);
        EXPECT_EQ(log.beeps(), 1);
        HalvexRunCommand::HalvexRunNoOutput(command);
    }
    EXPECT_EQ(log.beeps(), 2);
    EXPECT_THAT(log.take(),
                ElementsAre("Error opening pipe: " + command, "Error opening pipe: " + command));
    EXPECT_FALSE(std::filesystem::exists(folder.file("done")));
}

} // namespace
