#include "menuextras/ExportedIdentifiers.h"
#include "tests/pane/FolderContents.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

using test::folderContents;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

constexpr const char* kApplication = "Contents/PlugIns/Halvex.app/Contents/Linux/Halvex";

/// What the build installs, staged in a folder of the test's own.
class Installation : public testing::Test {
  protected:
    void SetUp() override {
        run("DESTDIR=\"$PWD\" '" HALVEX_CMAKE "' --install '" HALVEX_BUILD "' --prefix /usr/local");
        ASSERT_EQ(status, 0) << output;
    }
    /// A shell's command line in the staged root.
    void run(const std::string& command) {
        const std::string script =
            "cd '" + stage.path().string() + "' && { " + command + "\n} >output 2>&1";
        status = std::system(script.c_str());
        std::ifstream stream(stage.path() / "output");
        output.assign(std::istreambuf_iterator<char>(stream), {});
    }

    test::TemporaryFolder stage;
    std::string output;
    int status = -1;
    const std::string panes = std::string(HALVEX_PANES_FOLDER).substr(1);
};

TEST_F(Installation, HasProgramsLibrariesAndTheWholePaneInTheirPlaces) {
    for (const char* file : {"usr/local/bin/halvex-menubar", "usr/local/bin/halvex-preferences",
                             "usr/local/bin/halvexctl", "usr/local/lib/libHalvexTools.so.1",
                             "usr/local/lib/libHalvexDesktop.so.1",
                             "usr/local/lib/halvex/MenuExtras/Clock.menu/Contents/Linux/Clock"})
        EXPECT_TRUE(fs::exists(stage.file(file))) << file;
    auto installed = folderContents(stage.path() / panes / "Halvex Pro.prefPane");
    auto built = folderContents(HALVEX_PANE);
    EXPECT_EQ(installed.erase(kApplication), 1U); // it differs: see below
    EXPECT_EQ(built.erase(kApplication), 1U);
    EXPECT_TRUE(installed == built);
}

TEST_F(Installation, HasAnApplicationThatFindsTheInstalledLibraries) {
    const std::string program = panes + "/Halvex Pro.prefPane/" + kApplication;
    run("readelf -d '" + program + "'");
    EXPECT_THAT(output, HasSubstr("Library runpath: [/usr/local/lib]"));
    run("LD_LIBRARY_PATH=usr/local/lib '" + program + "' --version");
    EXPECT_EQ(status, 0) << output;
}

TEST_F(Installation, HasAProgramThatGivesTheUserTheInstalledPane) {
    run("mkdir home; HOME=\"$PWD/home\" usr/local/bin/halvexctl --root . pane install");
    EXPECT_EQ(status, 0) << output;
    EXPECT_TRUE(folderContents(stage.path() / "home/Library/PreferencePanes") ==
                folderContents(stage.path() / panes));
}

TEST_F(Installation, HasABarThatLoadsItemsFromThePaneAndFromAHomeFolder) {
    const std::string plugIns = panes + "/Halvex Pro.prefPane/Contents/PlugIns";
    run("mkdir -p 'home/Menu Extras' && cp -R '" + plugIns + "/" + kHalvexTimeExtraFile +
        "' 'home/Menu Extras'");
    for (const std::string& folder : {plugIns, std::string("home/Menu Extras")}) {
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
        EXPECT_THAT(output, HasSubstr("string \"" + std::string(HalvexMenuID) + "\""));
        EXPECT_THAT(output, HasSubstr("string \"" + item + "\""));
        EXPECT_THAT(output,
                    HasSubstr("maps\n" + stage.file("usr/local/lib/libHalvexTools.so.1.0.0") +
                              "\nended well"));
    }
}

} // namespace
