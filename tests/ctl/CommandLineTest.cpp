#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

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
        ctl.follow(
            {{"halvexctl " + arguments, "", 2, message},
             {"halvexctl " + arguments, "", 2, "\nRun with --help for more information.\n"}});
    }
    ctl.follow({{"ls \"home/$support\" \"root/$support\" | grep -v :", "\n"}});
}

TEST(CommandLine, HelpIsAResultAndOneThatDoesNotArriveIsAFailure) {
    const Ctl ctl;
    ctl.write("list", "<plist><array/></plist>");
    const std::string reason = "halvexctl: standard output: ";
    ctl.follow({{"halvexctl locations cache --help | grep -o '^Usage: .*S]'",
                 "Usage: halvexctl locations cache [OPTIONS]\n"},
                {"halvexctl plist list >/dev/full", "", 1, reason + "No space left on device\n"},
                {"halvexctl themes --help >&-", "", 1, reason + "Bad file descriptor\n"},
                // The pipe's only reader is gone before the program begins.
                {"mkfifo pipe; : <pipe & exec 3>pipe; wait; halvexctl locations cache exists >&3",
                 "", 1, reason + "Broken pipe\n"}});
}

TEST(CommandLine, ClosedStandardStreamsNeverGetIntoADataFile) {
    const Ctl ctl;
    ctl.write("list", "<plist><array><string>a</string></array></plist>");
    ctl.follow({{"halvexctl locations save list <&- >&- 2>&-", ""},
                {"halvexctl locations show --json", "[\n  \"a\"\n]\n"}});
}

} // namespace
