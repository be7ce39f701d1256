#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using test::Ctl;
using test::Outcome;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

TEST(CommandLine, HelpOfEveryVerbIsAResult) {
    const Ctl ctl;
    std::istringstream verbs("; paths; themes; pictures; frames; locations; locations show;"
                             " locations merge; locations split; locations save; locations cache;"
                             " locations cache exists; locations cache remove; warnings;"
                             " warnings has-custom; pane; pane path; pane install; pane uninstall;"
                             " plist");
    for (std::string verb; std::getline(verbs, verb, ';');) {
        const Outcome outcome = ctl.run("halvexctl" + verb + " --help");
        EXPECT_EQ(outcome.status, 0) << outcome.log;
        EXPECT_THAT(outcome.output, HasSubstr("Usage: halvexctl" + verb + " [OPTIONS]"));
    }
}

TEST(CommandLine, WrongUsageIsExplainedAndDoesNothing) {
    const Ctl ctl;
    const std::pair<std::string, const char*> cases[] = {
        {"", "A verb is required"},
        {"path", "not expected: path"},
        {"frames --exclude", "--exclude: "},
        {"locations cache", "A verb is required"},
        {"locations split list own", "NET is required"},
        {"locations split list x home/../x", "USER and NET: are the same file"},
        {"pane install one another", "not expected: another"},
        {"--root nowhere paths", "--root: "},
    };
    for (const auto& [arguments, message] : cases) {
        const Outcome outcome = ctl.run("halvexctl " + arguments);
        EXPECT_EQ(outcome.status, 2) << arguments;
        EXPECT_EQ(outcome.output, "") << arguments;
        EXPECT_THAT(outcome.log, HasSubstr(message));
        EXPECT_THAT(outcome.log, EndsWith("Run with --help for more information.\n"));
    }
    EXPECT_EQ(ctl.run("ls \"home/$support\" \"root/$support\" | grep -v :").output, "\n");
}

TEST(CommandLine, AResultThatDoesNotArriveIsAFailure) {
    const Ctl ctl;
    ctl.write("list", "<plist><array/></plist>");
    const std::pair<std::string, std::string> cases[] = {
        {"halvexctl plist list >/dev/full", "No space left on device"},
        {"halvexctl themes --help >&-", "Bad file descriptor"},
        // The pipe's only reader is gone before the program begins.
        {"mkfifo pipe; : <pipe & exec 3>pipe; wait; halvexctl locations cache exists >&3",
         "Broken pipe"},
    };
    for (const auto& [command, reason] : cases) {
        const Outcome outcome = ctl.run(command);
        EXPECT_EQ(outcome.status, 1) << reason;
        EXPECT_EQ(outcome.log, "halvexctl: standard output: " + reason + "\n");
    }
}

TEST(CommandLine, ClosedStandardStreamsNeverGetIntoADataFile) {
    const Ctl ctl;
    ctl.write("list", "<plist><array><string>a</string></array></plist>");
    EXPECT_EQ(ctl.run("halvexctl locations save list <&- >&- 2>&-").status, 0);
    EXPECT_EQ(ctl.run("halvexctl locations show --json").output, "[\n  \"a\"\n]\n");
}

} // namespace
