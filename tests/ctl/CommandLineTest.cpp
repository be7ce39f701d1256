#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Ctl;
using test::Outcome;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

TEST(CommandLine, HelpOfEveryVerbIsAResult) {
    const Ctl ctl;
    for (const std::string verb : {"",
                                   " paths",
                                   " themes",
                                   " pictures",
                                   " frames",
                                   " locations",
                                   " locations show",
                                   " locations merge",
                                   " locations split",
                                   " locations save",
                                   " locations cache",
                                   " locations cache exists",
                                   " locations cache remove",
                                   " warnings",
                                   " warnings has-custom",
                                   " pane",
                                   " pane path",
                                   " pane install",
                                   " pane uninstall",
                                   " plist"}) {
        const Outcome outcome = ctl.run("halvexctl" + verb + " --help");
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, HasSubstr("Usage: halvexctl" + verb + " [OPTIONS]"));
        EXPECT_EQ(outcome.log, "");
    }
}

TEST(CommandLine, WrongUsageIsExplainedAndDoesNothing) {
    const Ctl ctl;
    const std::pair<std::string, const char*> cases[] = {
        {"", "A verb is required"},
        {"path", "not expected: path"},
        {"paths themes", "not expected: themes"},
        {"frames --exclude", "--exclude: "},
        {"frames --exclude a b", "not expected: b"},
        {"locations", "A verb is required"},
        {"locations merge", "LIST is required"},
        {"locations split list own", "NET is required"},
        {"locations split list x home/../x", "USER and NET: are the same file"},
        {"locations cache", "A verb is required"},
        {"warnings --json", "NAME is required"},
        {"warnings has-custom", "NAME is required"},
        {"pane", "A verb is required"},
        {"pane install one another", "not expected: another"},
        {"plist", "FILE is required"},
        {"--root nowhere paths", "--root: "},
    };
    for (const auto& [arguments, message] : cases) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = ctl.run("halvexctl " + arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.log, HasSubstr(message));
        EXPECT_THAT(outcome.log, EndsWith("Run with --help for more information.\n"));
    }
    EXPECT_EQ(ctl.run("ls \"home/$support\" \"root/$support\" | grep -v :").output, "\n");
}

TEST(CommandLine, AResultThatDoesNotArriveIsAFailure) {
    const Ctl ctl;
    ctl.write("list", "<plist><array/></plist>");
    const struct {
        std::string before, output, reason;
    } cases[] = {
        {"", ">/dev/full", "No space left on device"},
        {"", ">&-", "Bad file descriptor"},
        // The pipe's only reader is gone before the program begins.
        {"mkfifo pipe; : <pipe & exec 3>pipe; wait; rm pipe; ", ">&3", "Broken pipe"},
    };
    for (const auto& [before, output, reason] : cases)
        for (const std::string verb :
             {"plist list ", "themes --help ", "locations cache exists "}) {
            const Outcome outcome = ctl.run(before + "halvexctl " + verb + output);
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

TEST(CommandLine, ResultsAndLogLinesGoTheirOwnWays) {
    const Ctl ctl;
    const Outcome outcome = ctl.run("rm -r home/Library; halvexctl locations show --json");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "[]\n");
    EXPECT_THAT(outcome.log, HasSubstr("ovxMakeDirIfNeeded: Error creating path: "));
    EXPECT_THAT(outcome.log, HasSubstr("LocationList  thisBundle nil\n"));
}

} // namespace
