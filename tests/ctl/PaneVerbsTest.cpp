#include "identifiers/ExportedIdentifiers.h"
#include "tests/ctl/Shell.h"

using test::Shell;

namespace {

/// Writes a pane that contains a file named like itself.
void writePane(const Shell& shell, const std::string& name,
               const std::string& identifier = HalvexPrefsBundleID) {
    shell.write(name + "/Contents/Info.plist",
                "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
                    "</string></dict></plist>");
    shell.write(name + "/Contents/Resources/" + name, name);
}

TEST(PaneVerbs, InstallTheShippedPaneForTheUserAndUninstallIt) {
    const std::string users = "home/Library/PreferencePanes/Halvex Pro.prefPane\n";
    const std::string shared = HalvexProPrefsAllUsers;
    Shell().run(
        {{"halvexctl pane path", "", 1, "halvexctl: no preference pane is installed\n"},
         {"halvexctl prefs open", "", 1, "Halvex Pref bundle not found."},
         {"halvexctl pane install | sed \"s|$PWD/||\"", users},
         {"diff -r '" HALVEX_PANE "' \"$pane\"", ""},
         {"{ halvexctl pane path; halvexctl prefs path; } | sed \"s|$PWD/||\"", users + users},
         {"halvexctl background path | sed \"s|.*prefPane||\"", "/Contents/PlugIns/Halvex.app\n"},
         {"halvexctl locations show | grep -c '<string>Europe/London'", "1\n"},
         {"mkdir -p 'root" + shared + "'; halvexctl pane path", shared + "\n"},
         {"halvexctl pane uninstall && halvexctl pane uninstall", ""}, // already removed
         {"ls -A $panes", ""}});
}

TEST(PaneVerbs, ReplaceTheInstalledCopyCompletely) {
    const Shell shell;
    writePane(shell, "first");
    writePane(shell, "second");
    for (const std::string before : {
             "halvexctl pane install first >path",
             "mkdir -p $panes; ln -s \"$PWD/first\" \"$pane\"", // the link's target stays
             "ln -s nowhere \"$pane\"",
             "mkdir -p \"$pane\" $panes/.halvex-pane-new/half $panes/.halvex-pane-old/half",
         })
        shell.run({{"rm -rf \"$pane\"; " + before, ""},
                   {"ln -sfn second newest; halvexctl pane install newest >path", ""},
                   {"ls -A $panes", "Halvex Pro.prefPane\n"},
                   {"test ! -L \"$pane\" && diff -r second \"$pane\"", ""},
                   {"cat first/*/*/first", "first"}});
}

TEST(PaneVerbs, RejectOtherBundlesAndKeepTheInstalledCopy) {
    const Shell shell;
    writePane(shell, "first");
    writePane(shell, "other", "org.example.other");
    shell.write("broken/Contents/Info.plist", "<plist><array/></plist>");
    shell.run(
        {{"halvexctl pane install first >path && ln -s \"$pane\" link", ""},
         {"halvexctl pane install missing", "", 1, "/missing: there is no such folder\n"},
         {"halvexctl pane install broken", "", 1, "/broken: Info.plist: not a dictionary\n"},
         {"halvexctl pane install other", "", 1, "/other: the bundle's identifier is not"},
         {"halvexctl pane install link", "", 1, "/link: this pane is already installed here\n"},
         {"diff -r first \"$pane\" && ls -A $panes", "Halvex Pro.prefPane\n"},
         {"rm -r $panes; : >$panes; halvexctl pane install first", "", 1, "cannot be copied"}});
}

} // namespace
