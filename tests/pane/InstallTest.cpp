#include "menuextras/ExportedIdentifiers.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>

using testing::HasSubstr;

namespace {

/// What the build installs, staged in a folder of the test's own.
class Installation : public testing::Test {
  protected:
    void SetUp() override {
        run("DESTDIR=\"$PWD\" '" HALVEX_CMAKE "' --install '" HALVEX_BUILD "' --prefix /usr/local");
    }
    /// A shell's command line in the staged root, where $pane is the installed pane.
    void run(const std::string& command) {
        const std::string script = "cd '" + stage.path().string() + "' && pane='" + pane +
                                   "' && { " + command + "\n} >output 2>&1";
        const int status = std::system(script.c_str());
        output = test::contents(stage.path() / "output");
        ASSERT_EQ(status, 0) << output;
    }

    test::TemporaryFolder stage;
    std::string output;
    const std::string pane = std::string(HALVEX_PANES_FOLDER).substr(1) + "/Halvex Pro.prefPane";
};

TEST_F(Installation, HasProgramsLibrariesAndThePaneThatItsProgramGivesToTheUser) {
    run("cd usr/local && ls bin/halvex-menubar bin/halvex-preferences bin/halvexctl "
        "lib/libHalvexTools.so.1 lib/libHalvexDesktop.so.1 "
        "lib/halvex/MenuExtras/Clock.menu/Contents/Linux/Clock");
    // The application's program differs from the built one by where it looks for the libraries.
    run("mkdir home && HOME=\"$PWD/home\" usr/local/bin/halvexctl --root . pane install >/dev/null "
        "&& diff -r --exclude=Halvex \"$pane\" '" HALVEX_PANE "' &&"
        " diff -r \"$pane\" 'home/Library/PreferencePanes/Halvex Pro.prefPane'");
    EXPECT_EQ(output, "");
    run("readelf -d \"$pane/Contents/PlugIns/Halvex.app/Contents/Linux/Halvex\"");
    EXPECT_THAT(output, HasSubstr("Library runpath: [/usr/local/lib]"));
}

TEST_F(Installation, HasABarThatLoadsItemsFromThePaneAndFromAHomeFolder) {
    const std::string plugIns = pane + "/Contents/PlugIns";
    run("mkdir home && cp -R '" + plugIns + "/" + kHalvexTimeExtraFile + "' home");
    for (const std::string& folder : {plugIns, std::string("home")}) {
        const std::string item = stage.file(folder + "/" + kHalvexTimeExtraFile);
        // A bar on a bus of its own, what it lists, which library its items have, and its end.
        run("HOME=\"$PWD/home\" XDG_RUNTIME_DIR=\"$PWD\" dbus-run-session -- sh -c '"
            "usr/local/bin/halvex-menubar \"$0\" & bar=$!\n"
            "for try in $(seq 100); do sleep 0.1; dbus-send --session --print-reply"
            " --dest=com.quorvanesoftware.MenuBar /com/quorvanesoftware/MenuBar"
            " com.quorvanesoftware.MenuBar1.ListMenuExtras && break; done\n"
            "echo maps; grep -o /.*libHalvexTools.* /proc/$bar/maps | sort -u\n"
            "kill $bar; wait $bar && echo ended well' '" +
            item + "'");
        EXPECT_THAT(output, HasSubstr("string \"" + item + "\""));
        EXPECT_THAT(output,
                    HasSubstr("maps\n" + stage.file("usr/local/lib/libHalvexTools.so.1.0.0") +
                              "\nended well"));
    }
}

} // namespace
