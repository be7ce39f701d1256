#include "tests/ctl/Ctl.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::Ctl;
using test::Outcome;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// Runs a script, in which ctl is the program, on a session bus of its own.
Outcome onOwnBus(const Ctl& ctl, const std::string& script) {
    ctl.write("script", "ctl() { '" HALVEX_CTL "' --root root \"$@\"; }\n" + script);
    return ctl.run("XDG_RUNTIME_DIR=\"$PWD\" QT_QPA_PLATFORM=offscreen dbus-run-session sh script");
}

TEST(ExtraVerbs, TurnTheClockOnAndOffInTheRealBar) {
    const Ctl ctl;
    const Outcome outcome = onOwnBus(ctl, R"(
        copy="$HOME/Library/Application Support/Quorvane Software/Menu Extras/HalvexTimeMenu.menu"
        names() { ctl menubar list | cut -f1 | tr "\n" " "; echo; }
        ctl pane install >/dev/null
        ctl menubar start; ctl menubar start; names
        ctl toggle HalvexTimeMenu on; names
        [ -d "$copy" ] && ctl extras | head -1
        ctl menubar click com.quorvanesoftware.HalvexProMenu --modifiers shift,option --button 1
        ctl menubar click no.such.item || echo "no such item"
        ctl menubar snapshot bar.png && file=$(head -c4 bar.png | tail -c3) && echo "$file"
        ctl pro remove; ctl toggle 1 off || echo "was not loaded"; names
        [ -e "$copy" ] || echo removed
        ctl menubar stop; ctl menubar stop || echo stopped)");
    EXPECT_EQ(outcome.output,
              "com.apple.menuextra.clock \n"
              "com.quorvanesoftware.HalvexProMenu \n"
              "1\tHalvexTimeMenu\tcom.quorvanesoftware.HalvexProMenu\tshipped 1.0.0\tinstalled "
              "1.0.0\tloaded\n"
              "menu\nno such item\nPNG\n\nremoved\nstopped\n")
        << outcome.log;
    EXPECT_THAT(outcome.log,
                HasSubstr("MenuExtra (com.quorvanesoftware.HalvexProMenu) removal failed."));
}

TEST(ExtraVerbs, FallBackOnMenuCrackerWhereTheBarAdmitsItsOwnItemsOnly) {
    const Ctl ctl;
    const Outcome outcome = onOwnBus(ctl, R"(
        ctl pane install >/dev/null
        ')" HALVEX_MENUBAR R"(' --admit=system &
        until ctl menubar list >list 2>/dev/null && [ -s list ]; do sleep 0.1; done
        ctl toggle 1 on && ctl menubar list | cut -f1
        kill $!; wait)");
    EXPECT_EQ(outcome.output, "net.sourceforge.menucracker\ncom.quorvanesoftware.HalvexProMenu\n")
        << outcome.log;
}

TEST(ExtraVerbs, RefuseWhatMakesNoSenseAndChangeNothing) {
    const Ctl ctl;
    ctl.write("file.menu", "no folder");
    const std::string kept = "home/Library/Application Support/Quorvane Software/kept.menu/x";
    ctl.write(kept, "");
    const std::pair<std::string, std::string> cases[] = {
        {"toggle 7 on", "halvexctl: there is no menu extra 7; "},
        {"toggle Nothing off", "halvexctl: there is no menu extra Nothing; "},
        {"install file.menu", "halvexctl: file.menu: this is a file"},
        {"install .", "halvexctl: .: a menu extra is a folder"},
        {"remove ..", "halvexctl: ..: this is not the name"},
        {"remove ../kept.menu", "halvexctl: ../kept.menu: this is not the name"},
        {"remove \"$user/kept.menu\"", "halvexctl: home/Library"},
        {"upgrade 7", "halvexctl: there is no menu extra 7; "},
        {"preflight file.menu", ""},
    };
    for (const auto& [command, line] : cases) {
        const Outcome outcome = ctl.run("halvexctl " + command);
        EXPECT_EQ(outcome.status, 1) << command;
        EXPECT_THAT(outcome.log, StartsWith(line)) << command;
        EXPECT_EQ(outcome.output, "") << command;
    }
    EXPECT_EQ(ctl.run("[ -e '" + kept + "' ]").status, 0);
}

TEST(ExtraVerbs, SayAtOnceThatThereIsNoBar) {
    const Ctl ctl;
    const std::string alone =
        "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere timeout 2 '" HALVEX_CTL "' --root root ";
    for (const std::string verb : {"menubar list", "menubar start", "menubar snapshot x.png"}) {
        const Outcome outcome = ctl.run(alone + verb);
        EXPECT_EQ(outcome.status, 1) << verb;
        EXPECT_EQ(outcome.log, "halvexctl: there is no session bus\n") << verb;
    }
    EXPECT_EQ(ctl.run(alone + "extras | wc -l").output, "9\n");
}

} // namespace
