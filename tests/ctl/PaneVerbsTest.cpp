#include "menuextras/ExportedIdentifiers.h"
#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Outcome;
using testing::HasSubstr;

namespace {

std::string info(const std::string& identifier) {
    return "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
           "</string></dict></plist>";
}

class PaneVerbs : public testing::Test {
  protected:
    /// A shell's command line in which $panes and $place are the user's folder and pane.
    Outcome run(const std::string& command) const {
        return ctl.run(
            "panes=home/Library/PreferencePanes; place=\"$panes/Halvex Pro.prefPane\"\n" + command);
    }
    /// A pane of the test's own, with a file that tells it from others.
    void writePane(const std::string& name) const {
        ctl.write(name + "/Contents/Info.plist", info(HalvexPrefsBundleID));
        ctl.write(name + "/Contents/Resources/" + name, name);
    }

    test::Ctl ctl;
};

TEST_F(PaneVerbs, PutTheShippedPaneIntoTheUsersPlaceAndTakeItAwayAgain) {
    const Outcome without = run("halvexctl pane path");
    EXPECT_EQ(without.status, 1);
    EXPECT_EQ(without.log, "halvexctl: no preference pane is installed\n");
    const std::string users = "home/Library/PreferencePanes/Halvex Pro.prefPane\n";
    const std::string everybodys = HalvexProPrefsAllUsers;
    const std::pair<std::string, std::string> steps[] = {
        {"halvexctl pane install | sed \"s|$PWD/||\"", users},
        {"diff -r '" HALVEX_PANE "' \"$place\"", ""},
        {"halvexctl pane path | sed \"s|$PWD/||\"", users},
        {"halvexctl prefs path | sed \"s|$PWD/||\"", users},
        {"halvexctl background path | sed \"s|.*prefPane||\"", "/Contents/PlugIns/Halvex.app\n"},
        {"halvexctl locations show | grep -c '<string>Europe/London'", "1\n"},
        {"mkdir -p 'root" + everybodys + "'; halvexctl pane path", everybodys + "\n"},
        {"halvexctl pane uninstall; ls -A $panes", ""},
        {"halvexctl pane uninstall", ""},
    };
    for (const auto& [command, output] : steps) {
        const Outcome outcome = run(command);
        EXPECT_EQ(outcome.status, 0) << command << outcome.log;
        EXPECT_EQ(outcome.output, output) << command;
    }
}

TEST_F(PaneVerbs, ReplaceAnOlderCopyWhole) {
    writePane("first");
    writePane("second");
    for (const std::string older :
         {"halvexctl pane install first >/dev/null",
          "mkdir -p $panes; ln -s \"$PWD/first\" \"$place\"", // a link, whose target stays
          "ln -s nowhere \"$place\"",
          "mkdir -p $panes/.halvex-pane-new/half $panes/.halvex-pane-old/half"}) {
        const Outcome outcome = run("rm -rf \"$place\"; " + older + R"(
            ln -sfn second newest
            halvexctl pane install newest >/dev/null && ls -A $panes && test ! -L "$place" &&
            diff -r second "$place" && cat first/*/*/first)");
        EXPECT_EQ(outcome.status, 0) << older << outcome.log;
        EXPECT_EQ(outcome.output, "Halvex Pro.prefPane\nfirst") << older;
    }
}

TEST_F(PaneVerbs, RefuseWhatIsNoPaneAndKeepTheOlderCopy) {
    writePane("first");
    ctl.write("file", "");
    ctl.write("bare/Contents/x", "");
    ctl.write("broken/Contents/Info.plist", "<plist><array/></plist>");
    ctl.write("other/Contents/Info.plist", info("org.example.other"));
    ASSERT_EQ(run("halvexctl pane install first && ln -s \"$place\" link").status, 0);
    const std::pair<std::string, const char*> cases[] = {
        {"missing", "/missing: there is no such folder\n"},
        {"file", "/file: there is no such folder\n"},
        {"bare", "/bare: Info.plist: "},
        {"broken", "/broken: Info.plist: no dictionary\n"},
        {"other", "/other: this bundle is not com.quorvanesoftware.prefHalvexPanel\n"},
        {"\"$place\"", "/Halvex Pro.prefPane: this is the installed pane itself\n"},
        {"link", "/link: this is the installed pane itself\n"},
    };
    for (const auto& [pane, message] : cases) {
        const Outcome outcome = run("halvexctl pane install " + pane);
        EXPECT_EQ(outcome.status, 1) << pane;
        EXPECT_EQ(outcome.output, "") << pane;
        EXPECT_THAT(outcome.log, HasSubstr(message));
        EXPECT_EQ(run("diff -r first \"$place\" && ls -A $panes").output, "Halvex Pro.prefPane\n");
    }
    EXPECT_THAT(run("rm -r $panes; : >$panes; halvexctl pane install first").log,
                HasSubstr("/first: cannot be copied to "));
}

TEST_F(PaneVerbs, LeaveAWholePaneOrNoneWhenTheyAreKilled) {
    // Each run is given a little more time than the one before it, up to what a whole one takes.
    const Outcome outcome =
        run("program='" HALVEX_CTL "' info='" HALVEX_PANE "/Contents/Info.plist'"
            R"(
        for pane in first second; do
            mkdir -p $pane/Contents/PlugIns
            cp "$info" $pane/Contents
            for i in $(seq 40); do echo $pane >$pane/Contents/PlugIns/$i; done
        done
        "$program" pane install first >/dev/null
        before=$(date +%s%N)
        "$program" pane install second >/dev/null
        span=$(($(date +%s%N) - before))
        for try in $(seq 15); do
            moment=$((span * try / 15))
            for pane in first second; do
                "$program" pane install $pane >/dev/null &
                sleep $((moment / 1000000000)).$(printf %09d $((moment % 1000000000)))
                kill -9 $!
                wait
                [ ! -e "$place" ] || diff -rq first "$place" >/dev/null ||
                    diff -rq second "$place" >/dev/null || echo "half a pane after $moment ns"
            done
        done
        "$program" pane install first >/dev/null && diff -r first "$place" && ls -A $panes)");
    EXPECT_EQ(outcome.output, "Halvex Pro.prefPane\n") << outcome.log;
}

} // namespace
