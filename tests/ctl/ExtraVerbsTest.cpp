#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

/// Runs a script, in which ctl is the program, on a session bus of its own.
void followOnOwnBus(const std::string& script, const std::string& output,
                    const std::string& log = {}) {
    const Ctl ctl;
    ctl.write("script", "ctl() { '" HALVEX_CTL "' --root root \"$@\"; }\n" + script);
    ctl.follow({{"XDG_RUNTIME_DIR=\"$PWD\" QT_QPA_PLATFORM=offscreen dbus-run-session sh script",
                 output, 0, log}});
}

TEST(ExtraVerbs, TurnTheClockOnAndOffInTheRealBar) {
    followOnOwnBus(R"(
        copy="$HOME/Library/Application Support/Quorvane Software/Menu Extras/HalvexTimeMenu.menu"
        names() { ctl menubar list | cut -f1 | tr "\n" " "; echo; }
        ctl pane install >/dev/null
        ctl menubar start; ctl menubar start; names
        ctl toggle HalvexTimeMenu on; names
        [ -d "$copy" ] && ctl extras | head -1
        ctl menubar click com.quorvanesoftware.HalvexProMenu --modifiers shift,option --button 1
        ctl menubar click no.such.item || echo "no such item"
        ctl menubar snapshot bar.png && head -c4 bar.png | tail -c3; echo
        ctl pro remove; ctl toggle 1 off || echo "was not loaded"; names
        [ -e "$copy" ] || echo removed
        ctl menubar add; ctl menubar add || echo "one is enough"
        ctl install "$HOME"/Library/*/*/*/PlugIns/HalvexTimeMenu.menu 2>/dev/null
        ctl menubar add "$copy" --position 0; names
        ctl menubar remove com.quorvanesoftware.HalvexProMenu; names
        ctl menubar add root || echo "no bundle"
        ctl menubar stop; ctl menubar stop || echo stopped)",
                   "com.apple.menuextra.clock \n"
                   "com.quorvanesoftware.HalvexProMenu \n"
                   "1\tHalvexTimeMenu\tcom.quorvanesoftware.HalvexProMenu\tshipped 1.0.0\t"
                   "installed 1.0.0\tloaded\n"
                   "menu\nno such item\nPNG\n\nremoved\none is enough\n"
                   "com.quorvanesoftware.HalvexProMenu com.apple.menuextra.clock \n"
                   "com.apple.menuextra.clock \nno bundle\nstopped\n",
                   "MenuExtra (com.quorvanesoftware.HalvexProMenu) removal failed.");
}

TEST(ExtraVerbs, RefuseWhatMakesNoSenseAndChangeNothing) {
    const Ctl ctl;
    ctl.write("file.menu", "no folder");
    ctl.write("home/Library/Application Support/Quorvane Software/kept.menu/x", "");
    ctl.follow({
        {"halvexctl toggle 7 on", "", 1, "halvexctl: there is no menu extra 7; "},
        {"halvexctl toggle Nothing off", "", 1, "halvexctl: there is no menu extra Nothing; "},
        {"halvexctl install file.menu", "", 1, "file.menu: this is a file"},
        {"halvexctl install .", "", 1, ".: a menu extra is a folder"},
        {"halvexctl remove ..", "", 1, "..: this is not the name"},
        {"halvexctl remove ../kept.menu", "", 1, "../kept.menu: this is not the name"},
        {"halvexctl remove \"$user/kept.menu\"", "", 1, "kept.menu: this is not the name"},
        {"halvexctl upgrade 7", "", 1, "halvexctl: there is no menu extra 7; "},
        {"halvexctl preflight file.menu", "", 1, "there is no bundle with code"},
        {"ls \"$user/kept.menu\"", "x\n"},
    });
}

TEST(ExtraVerbs, SayAtOnceThatThereIsNoBarAndKnowNineTagsAllTheSame) {
    const std::string alone =
        "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere timeout 2 '" HALVEX_CTL "' --root root ";
    Ctl().follow({{alone + "menubar start", "", 1, "halvexctl: there is no session bus\n"},
                  {alone + "extras | sed 's/com.quorvanesoftware/C/' | cut -f-3",
                   "1\tHalvexTimeMenu\tC.HalvexProMenu\n"
                   "2\tHalvexASMMenu\tC.HalvexProASM\n"
                   "3\thxCALMenuExtra\tC.HalvexCAL\n"
                   "4\thxWirelessMenu\tC.HalvexWireless\n"
                   "5\tHalvexDateCalMenu\tC.HalvexDateCalMenu\n"
                   "6\tqvCalendarMenu\tC.HalvexCalMenu\n"
                   "31\tHalvexMenu\tC.HalvexMenu2\n"
                   "32\thxASMMenu\tC.HalvexASM2\n"
                   "33\tHalvexTimeOnlyMenuExtra\tC.HalvexTimeOnlyMenuExtra\n"}});
}

TEST(ExtraVerbs, GiveUpOnABusThatStandsStill) {
    Ctl().follow({{R"(
        dbus-daemon --session --fork --print-address=1 --print-pid=1 >bus
        { read -r address; read -r process; } <bus
        kill -STOP $process || exit 9
        DBUS_SESSION_BUS_ADDRESS=$address timeout 20 ')" HALVEX_CTL R"(' menubar list
        status=$?
        kill -KILL $process
        exit $status)",
                   "", 1, "halvexctl: there is no session bus\n"}});
}

TEST(ExtraVerbs, InstallNothingOnAFullDiskAndEverythingOnceThereIsRoom) {
    if (std::system("unshare -rm mount -t tmpfs none /mnt 2>/dev/null") != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    const Ctl ctl;
    ctl.write("big.menu/Contents/Info.plist", "<plist><dict/></plist>");
    ctl.write("big.menu/Contents/picture", std::string(200'000, '.'));
    ctl.write("script", R"(
        mkdir "$1"; mount -t tmpfs -o size=128k none "$1"
        ')" HALVEX_CTL R"(' --root root install big.menu; echo $?; ls -AR "$1/Menu Extras"
        mount -o remount,size=1m none "$1"
        ')" HALVEX_CTL R"(' --root root install big.menu; cat "$1"/*/big.menu/*/picture | wc -c)");
    ctl.follow({{"unshare -rm sh script \"$PWD/$user\" | sed \"s|$PWD||\"",
                 "1\n/home/Library/Application Support/Quorvane Software/Menu Extras:\n200000\n", 0,
                 "failed to install MenuExtra"}});
}

} // namespace
