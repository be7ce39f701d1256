#include "menuextras/ExportedIdentifiers.h"
#include "tests/ctl/Ctl.h"

using test::Ctl;

namespace {

/// A pane of the test's own, with a file that tells it from others.
void writePane(const Ctl& ctl, const std::string& name,
               const std::string& identifier = HalvexPrefsBundleID) {
    ctl.write(name + "/Contents/Info.plist", "<plist><dict><key>CFBundleIdentifier</key><string>" +
                                                 identifier + "</string></dict></plist>");
    ctl.write(name + "/Contents/Resources/" + name, name);
}

TEST(PaneVerbs, PutTheShippedPaneIntoTheUsersPlaceAndTakeItAwayAgain) {
    const std::string users = "home/Library/PreferencePanes/Halvex Pro.prefPane\n";
    const std::string everybodys = HalvexProPrefsAllUsers;
    Ctl().follow({
        {"halvexctl pane path", "", 1, "halvexctl: no preference pane is installed\n"},
        {"halvexctl pane install | sed \"s|$PWD/||\"", users},
        {"diff -r '" HALVEX_PANE "' \"$place\"", ""},
        {"halvexctl pane path | sed \"s|$PWD/||\"", users},
        {"halvexctl prefs path | sed \"s|$PWD/||\"", users},
        {"halvexctl background path | sed \"s|.*prefPane||\"", "/Contents/PlugIns/Halvex.app\n"},
        {"halvexctl locations show | grep -c '<string>Europe/London'", "1\n"},
        {"mkdir -p 'root" + everybodys + "'; halvexctl pane path", everybodys + "\n"},
        {"halvexctl pane uninstall; halvexctl pane uninstall; ls -A $panes", ""},
    });
}

TEST(PaneVerbs, ReplaceAnOlderCopyWhole) {
    const Ctl ctl;
    writePane(ctl, "first");
    writePane(ctl, "second");
    for (const std::string older :
         {"halvexctl pane install first >/dev/null",
          "mkdir -p $panes; ln -s \"$PWD/first\" \"$place\"", // a link, whose target stays
          "ln -s nowhere \"$place\"",
          "halvexctl pane install first >/dev/null && "
          "mkdir -p $panes/.halvex-pane-new/half $panes/.halvex-pane-old/half"})
        ctl.follow({{"rm -rf \"$place\"; " + older + R"(
                     ln -sfn second newest
                     halvexctl pane install newest >/dev/null && ls -A $panes &&
                     test ! -L "$place" && diff -r second "$place" && cat first/*/*/first)",
                     "Halvex Pro.prefPane\nfirst"}});
}

TEST(PaneVerbs, RefuseWhatIsNoPaneAndKeepTheOlderCopy) {
    const Ctl ctl;
    writePane(ctl, "first");
    writePane(ctl, "other", "org.example.other");
    ctl.write("broken/Contents/Info.plist", "<plist><array/></plist>");
    ctl.follow({
        {"halvexctl pane install first >/dev/null && ln -s \"$place\" link", ""},
        {"halvexctl pane install missing", "", 1, "/missing: there is no such folder\n"},
        {"halvexctl pane install broken", "", 1, "/broken: Info.plist: not a dictionary\n"},
        {"halvexctl pane install other", "", 1, "/other: this bundle is not com.quorvanesoftware."},
        {"halvexctl pane install link", "", 1, "/link: this is the installed pane itself\n"},
        {"diff -r first \"$place\" && ls -A $panes", "Halvex Pro.prefPane\n"},
        {"rm -r $panes; : >$panes; halvexctl pane install first", "", 1, ": cannot be copied to "},
    });
}

} // namespace
