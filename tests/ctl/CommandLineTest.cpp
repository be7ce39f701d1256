#include "tests/ctl/Shell.h"

using test::Shell;

namespace {

TEST(CommandLine, ReportsUsageErrorsAndChangesNothing) {
    const Shell shell;
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
    for (const auto& [arguments, message] : cases)
        shell.run({{"halvexctl " + arguments, "", 2, message}});
    shell.run({{"halvexctl path", "", 2, "\nRun with --help for more information.\n"},
               {"ls \"home/$support\" \"root/$support\" | grep -v :", "\n"}});
}

TEST(CommandLine, PrintsHelpToStandardOutput) {
    Shell().run(
        {{"halvexctl locations cache --help | grep -o '^Usage: .*S]'",
          "Usage: halvexctl locations cache [OPTIONS]\n"},
         {"halvexctl hud --help | grep -o -e '--part.*{.*}'", "--part TEXT:{all,bar,body}\n"}});
}

TEST(CommandLine, FailsIfTheOutputCannotBeWritten) {
    const Shell shell;
    shell.write("list", "<plist><array/></plist>");
    const std::string reason = "halvexctl: standard output: ";
    shell.run({{"halvexctl plist list >/dev/full", "", 1, reason + "No space left on device\n"},
               {"halvexctl themes --help >&-", "", 1, reason + "Bad file descriptor\n"},
               // The pipe's only reader has exited before halvexctl starts.
               {"mkfifo pipe; : <pipe & exec 3>pipe; wait; halvexctl locations cache exists >&3",
                "", 1, reason + "Broken pipe\n"}});
}

TEST(CommandLine, WritesNoOutputIntoDataFilesIfTheStandardStreamsAreClosed) {
    const Shell shell;
    shell.write("list", "<plist><array><string>a</string></array></plist>");
    shell.run({{"halvexctl locations save list <&- >&- 2>&-", ""},
               {"halvexctl locations show --json", "[\n  \"a\"\n]\n"}});
}

} // namespace
