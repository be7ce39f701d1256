#include "tests/ctl/Shell.h"

using test::Shell;

namespace {

/// A session bus for the commands of a shell.
class SessionBus {
  public:
    explicit SessionBus(const Shell& shell) : shell_(shell) {
        shell_.run({{R"(
            dbus-daemon --session --fork --print-address=1 --print-pid=1 >lines
            { read -r address; read -r process; } <lines
            echo "export DBUS_SESSION_BUS_ADDRESS='$address'; bus_process=$process" >bus)",
                     ""}});
    }
    ~SessionBus() { shell_.run({{"kill -KILL $bus_process", ""}}); }

  private:
    const Shell& shell_;
};

TEST(ExtraVerbs, ListItemsOfThirdPartiesThatAreDisabled) {
    const Shell shell;
    shell.write("home/Library/Application Support/Quorvane Software/Halvex Pro/"
                "Menu Bar Items.plist",
                "<plist><dict><key>Items</key><array/><key>Left Out</key><array><dict>"
                "<key>Identifier</key><string>a.b</string><key>Path</key><string>/B.menu</string>"
                "<key>Version</key><string>2</string><key>Step</key><string>click</string>"
                "<key>Failure</key><string>hang</string></dict></array></dict></plist>");
    shell.run(
        {{"halvexctl extras | tail -n 1", "0\tB.menu\ta.b\tshipped -\tinstalled 2\tnot loaded\t"
                                          "disabled: it stopped responding (click)\n"}});
}

TEST(ExtraVerbs, TurnTheClockOnAndOffInTheRealBar) {
    const Shell shell;
    const SessionBus bus(shell);
    const std::string list = "halvexctl menubar list | cut -f1";
    const std::string clock = "com.quorvanesoftware.HalvexProMenu";
    const std::string ownClock = "com.apple.menuextra.clock";
    const std::string copy = "\"$user/Menu Extras/HalvexTimeMenu.menu\"";
    const std::string items = "halvexctl menubar items | grep '^" + clock +
                              ".*Menu Extras/' | cut -f3- | cut -d/ -f1 | tr '\\t' ' '";
    const std::string state = "halvexctl extras | head -n 1 | cut -f6- | cut -d/ -f1";
    shell.run(
        // Without a pane, so that this is not the first start, at which the bar turns items on.
        {{"halvexctl menubar start && halvexctl menubar start", ""}, // already running
         {"halvexctl pane install >path", ""},
         {list, ownClock + "\n"},
         {"halvexctl toggle HalvexTimeMenu on && " + list, clock + "\n"},
         {"test -d " + copy, ""},
         {"halvexctl extras | head -n 1",
          "1\tHalvexTimeMenu\t" + clock + "\tshipped 1.0.0\tinstalled 1.0.0\tloaded\n"},
         {"halvexctl menubar click " + clock + " --modifiers shift,option --button 1", "handled\n"},
         {"halvexctl menubar click no.such.item", "", 1, "no.such.item: the menu extra"},
         {"halvexctl menubar snapshot bar.png && head -c 4 bar.png | tail -c 3", "PNG"},
         {"halvexctl pro remove && " + list, ""},
         {"halvexctl toggle 1 off", "", 0, "MenuExtra (" + clock + ") removal failed."},
         {"test -e " + copy, "", 1},
         {"halvexctl menubar add", ""},
         {"halvexctl menubar add", "", 1, ownClock + ": the menu extra is already loaded"},
         {"halvexctl install \"$pane/Contents/PlugIns/HalvexTimeMenu.menu\"", ""},
         {"halvexctl menubar add " + copy + " --position 0", ""},
         {list, clock + "\n" + ownClock + "\n"},
         {"halvexctl menubar remove " + clock + " && " + list, ownClock + "\n"},
         {"halvexctl menubar add root", "", 1, "/root: "},
         {"halvexctl menubar add \"$pane/Contents/PlugIns/HalvexTimeMenu.menu\" 2>&1 | "
          "grep -o 'HalvexTimeMenu.menu: it is not in'",
          "HalvexTimeMenu.menu: it is not in\n"},
         {"halvexctl menubar add " + copy, ""},
         {"halvexctl menubar move " + clock + " -1 && " + list, clock + "\n" + ownClock + "\n"},
         {"halvexctl menubar disable " + clock + " && " + list, ownClock + "\n"},
         {items, "-1 disabled: it was turned off\n"},
         {state, "not loaded\tdisabled: it was turned off\n"},
         {"halvexctl menubar enable " + clock + " && " + items, "-1 loaded\n"},
         {"halvexctl menubar snapshot item.png --item " + clock, ""},
         {"halvexctl menubar snapshot item.png --item no.such.item", "", 1,
          "halvexctl: no.such.item: the menu extra is not loaded\n"},
         {"halvexctl menubar disable " + clock + " && rm -r " + copy + " && " + items,
          "-1 missing: no bundle at \n"},
         {state, "not loaded\tmissing: no bundle at \n"},
         {"halvexctl menubar remove " + clock + " && " + items, ""},
         {"halvexctl menubar remove " + clock, "", 1,
          "halvexctl: " + clock + ": the menu extra is"},
         {"halvexctl toggle 31 off", "", 1, "31: this menu extra cannot be turned off"},
         {"ln -s nowhere \"$user/Menu Extras/HalvexASMMenu.menu\"; halvexctl toggle 2 off", "", 1,
          "2: the installed copy was not removed"},
         {"halvexctl menubar stop", ""},
         {"halvexctl menubar stop", "", 1, "halvexctl: no menu bar is running\n"},
         {"cp -r \"$pane/Contents/PlugIns/HalvexTimeMenu.menu\" " + copy, ""},
         {"halvexctl menubar start && halvexctl menubar add " + copy +
              " && halvexctl menubar disable " + clock,
          ""},
         {"halvexctl menubar stop && " + state, "not loaded\tdisabled: it was turned off\n"},
         {"rm -r " + copy + " && " + state, "not loaded\tmissing: no bundle at \n"}});
}

TEST(ExtraVerbs, RejectInvalidArgumentsAndChangeNothing) {
    const Shell shell;
    shell.write("file.menu", "no folder");
    shell.write("home/Library/Application Support/Quorvane Software/kept.menu/x", "");
    const std::string unknown = ": unknown menu extra; ";
    shell.run(
        {{"halvexctl toggle 7 on", "", 1, "halvexctl: 7" + unknown},
         {"halvexctl toggle Nothing off", "", 1, "halvexctl: Nothing" + unknown},
         {"halvexctl install file.menu", "", 1, "file.menu: a menu extra is a folder, not a file"},
         {"halvexctl install .", "", 1, ".: a menu extra's name ends in .menu"},
         {"halvexctl remove ..", "", 1, "..: this is not the name"},
         {"halvexctl remove ../kept.menu", "", 1, "../kept.menu: this is not the name"},
         {"halvexctl remove \"$user/kept.menu\"", "", 1, "kept.menu: this is not the name"},
         {"halvexctl upgrade 7", "", 1, "halvexctl: 7" + unknown},
         {"halvexctl preflight file.menu", "", 1, "not a bundle with code"},
         {"ls \"$user/kept.menu\"", "x\n"}});
}

TEST(ExtraVerbs, InstallTheTargetOfALinkAndRemoveADanglingLink) {
    const Shell shell;
    shell.write("built/Own.menu/Contents/Info.plist", "<plist><dict/></plist>");
    shell.run({{"ln -s built/Own.menu link; halvexctl install link", "", 0, "installed MenuExtra"},
               {"cd \"$user/Menu Extras\" && ls -F", "Own.menu/\n"},
               {"ln -s nowhere Gone.menu; halvexctl install Gone.menu", "", 1, "Gone.menu missing"},
               {"mv Gone.menu \"$user/Menu Extras\"; halvexctl remove Gone", ""},
               {"cd \"$user/Menu Extras\" && ls", "Own.menu\n"}});
}

TEST(ExtraVerbs, WorkWithoutASessionBus) {
    const std::string withoutBus =
        "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere timeout 2 '" HALVEX_CTL "' --root root ";
    Shell().run({{withoutBus + "menubar start", "", 1,
                  "halvexctl: cannot start the menu bar: there is no session bus\n"},
                 {withoutBus + "extras | cut -f1 | xargs", "1 2 3 4 5 6 31 32 33\n"},
                 {"ls -d \"$user\"", "", 2}}); // extras creates no folders
}

TEST(ExtraVerbs, TimeOutIfTheSessionBusHangs) {
    const Shell shell;
    const SessionBus bus(shell);
    shell.run({{"kill -STOP $bus_process", ""},
               {"timeout 20 '" HALVEX_CTL "' menubar list", "", 1, "there is no session bus"}});
}

TEST(ExtraVerbs, InstallACompleteBundleOrNothingIfTheDiskIsFull) {
    if (std::system("unshare -rm mount -t tmpfs none /mnt 2>/dev/null") != 0)
        GTEST_SKIP() << "no file system can be mounted here";
    const Shell shell;
    shell.write("big.menu/Contents/Info.plist", "<plist><dict/></plist>");
    shell.write("big.menu/Contents/picture", std::string(200'000, '.'));
    shell.write("install", R"(
        mkdir -p "$2"; mount -t tmpfs -o size=$1 none "$2"
        ')" HALVEX_CTL R"(' --root root install big.menu; status=$?
        ls -A "$2/Menu Extras"; [ $status != 0 ] || diff -r big.menu "$2/Menu Extras/big.menu"
        exit $status)");
    shell.run({{"unshare -rm sh install 128k \"$PWD/$user\"", "", 1, "failed to install MenuExtra"},
               {"unshare -rm sh install 1m \"$PWD/$user\"", "big.menu\n"}});
}

} // namespace
