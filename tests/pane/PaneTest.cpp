#include "identifiers/ExportedIdentifiers.h"
#include "platform/Bundle.h"
#include "platform/PropertyListService.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/values/PropertyList.h"
#include "testing/ManualAppearance.h"
#include "tests/support/TemporaryFolder.h"
#include "ui/ThemeFile.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>

using platform::PropertyList;
using testing::HasSubstr;

namespace {

/// The build's installation, staged in a temporary folder.
class Installation : public testing::Test {
  protected:
    void SetUp() override {
        run("DESTDIR=\"$PWD\" '" HALVEX_CMAKE "' --install '" HALVEX_BUILD "' --prefix /usr/local");
    }
    /// Runs a shell command in the staged root. $pane is the installed pane.
    void run(const std::string& command) {
        const std::string script = "cd '" + stage.path().string() + "' && pane='" + pane +
                                   "' && { " + command + "\n} >output 2>&1";
        const int status = std::system(script.c_str());
        output = test::contents(stage.path() / "output");
        ASSERT_EQ(status, 0) << output;
    }
    /// Expects that a bar on a private bus loads the item. The output ends with the library that is
    /// mapped, and with "exited normally" if the bar did.
    void expectBarLoads(const std::string& item) {
        run("HOME=\"$PWD/home\" XDG_RUNTIME_DIR=\"$PWD\" dbus-run-session -- sh -c '"
            "usr/local/bin/halvex-menubar \"$0\" & bar=$!\n"
            "for try in $(seq 100); do sleep 0.1; dbus-send --session --print-reply"
            " --dest=com.quorvanesoftware.MenuBar /com/quorvanesoftware/MenuBar"
            " com.quorvanesoftware.MenuBar1.ListMenuExtras && break; done\n"
            "echo maps; grep -o /.*libHalvexTools.* /proc/$bar/maps | sort -u\n"
            "kill $bar; wait $bar && echo exited normally' '" +
            item + "'");
        EXPECT_THAT(output, HasSubstr("string \"" + item + "\""));
    }

    test::TemporaryFolder stage;
    std::string output;
    const std::string pane = std::string(HALVEX_PANES_FOLDER).substr(1) + "/Halvex Pro.prefPane";
};

TEST_F(Installation, ContainsTheProgramsTheLibrariesAndThePane) {
    run("cd usr/local && ls bin/halvex-menubar bin/halvex-preferences bin/halvexctl "
        "lib/libHalvexTools.so.1 lib/libHalvexDesktop.so.1 "
        "lib/halvex/MenuExtras/Clock.menu/Contents/Linux/Clock");
    // Halvex is excluded: its run path differs from that of the built program.
    run("mkdir home && HOME=\"$PWD/home\" usr/local/bin/halvexctl --root . pane install >/dev/null "
        "&& diff -r --exclude=Halvex \"$pane\" '" HALVEX_PANE "' &&"
        " diff -r \"$pane\" 'home/Library/PreferencePanes/Halvex Pro.prefPane'");
    EXPECT_EQ(output, "");
    run("readelf -d \"$pane/Contents/PlugIns/Halvex.app/Contents/Linux/Halvex\"");
    EXPECT_THAT(output, HasSubstr("Library runpath: [/usr/local/lib]"));
}

/// The loader searches the current folder for an empty entry of a run path.
TEST_F(Installation, AndTheBuildHaveRunPathsWithoutEmptyOrRelativeEntries) {
    for (const std::string folder : {".", HALVEX_BUILD}) {
        run("find '" + folder +
            "' -type f -perm -u+x -exec readelf -d {} + 2>/dev/null"
            " | sed -n 's/.*(R.*PATH).*\\[\\(.*\\)\\]/:\\1/p' | tr -d '\\n'");
        EXPECT_THAT(output, testing::MatchesRegex("(:(/|[$]ORIGIN)[^:]*)+")) << folder;
    }
}

TEST_F(Installation, HasABarThatLoadsItemsFromThePaneAndFromAHomeFolder) {
    const std::string plugIns = pane + "/Contents/PlugIns";
    run("mkdir home && cp -R '" + plugIns + "/" + kHalvexTimeExtraFile + "' home");
    for (const std::string& folder : {plugIns, std::string("home")}) {
        expectBarLoads(stage.file(folder + "/" + kHalvexTimeExtraFile));
        EXPECT_THAT(output,
                    HasSubstr("maps\n" + stage.file("usr/local/lib/libHalvexTools.so.1.0.0") +
                              "\nexited normally"));
    }
}

TEST_F(Installation, CompilesTheGuidesItemTogetherWithEveryPublicHeader) {
    // The guide's first C++ block is the item's source, and its first CMake block the build file.
    run("mkdir home item && cd item && (cd ../usr/local/include/HalvexTools && find -name '*.h') |"
        " sed 's/.*/#include \"&\"/' >Load.cpp\n"
        "block() { sed -n \"/^\\`\\`\\`$1/,/^\\`\\`\\`/p\" '" HALVEX_GUIDE "' |"
        " sed '1d; /^```/,$d'; }\n"
        "block cpp >>Load.cpp; block cmake >CMakeLists.txt\n"
        "CXX='" HALVEX_CXX "' '" HALVEX_CMAKE "' -DCMAKE_PREFIX_PATH=\"$OLDPWD/usr/local\""
        " -G Ninja -B build && '" HALVEX_CMAKE "' --build build");
    expectBarLoads(stage.file("item/build/extras/Load.menu"));
}

TEST_F(Installation, BuildsTestsAndLoadsANewProjectAndTheExamples) {
    run("mkdir home && usr/local/bin/halvexctl new Mine --name Mine --identifier org.test.Mine &&"
        " cp -R '" HALVEX_EXAMPLES "'/* . && rm -R Uptime");
    for (const std::string name : {"Mine", "LoadGraph", "Month"}) {
        run("cd " + name +
            " && CXX='" HALVEX_CXX "' '" HALVEX_CMAKE
            "' -DCMAKE_PREFIX_PATH=\"$OLDPWD/usr/local\" " HALVEX_SANITIZER_OPTIONS
            " -G Ninja -B build && '" HALVEX_CMAKE "' --build build &&"
            " ctest --test-dir build --no-tests=error");
        expectBarLoads(stage.file(name + "/build/extras/" + name + ".menu"));
    }
}

TEST(Pane, ShipsThemesWithEveryColorForLightAndDarkAndAllIcons) {
    platform::expat::install();
    halvextest::ManualAppearance appearance;
    for (const std::string folder : {HALVEX_THEMES "/Harbour", HALVEX_THEMES "/Paper"}) {
        std::string reason;
        const auto theme = ui::ThemeFile::read(folder, reason);
        ASSERT_TRUE(theme) << folder << ": " << reason;
        for (const bool isDark : {false, true}) {
            appearance.setDark(isDark);
            for (const char* name :
                 {"SecondLine", "CalendarIcon", "Text", "SecondaryText", "Weekend", "Dimmed",
                  "Today", "TodayText", "Selection", "SelectionEdge", "Event", "Holiday"})
                EXPECT_TRUE(theme->color(name)) << folder << ' ' << name << ' ' << isDark;
        }
        for (const char* icon : {"Day.png", "Day@2x.png", "Night.png", "Night@2x.png"})
            EXPECT_TRUE(std::filesystem::exists(folder + "/Icons/" + icon)) << icon;
    }
}

std::string text(const PropertyList::Array& record, std::size_t element) {
    return std::string(record.at(element).string().value_or(""));
}

TEST(Pane, ListsValidLocationsWithUniqueNamesAndCorrectCoordinates) {
    platform::expat::install();
    const auto pane = platform::Bundle::bundleWithPath(HALVEX_PANE);
    ASSERT_TRUE(pane);
    const auto resource = pane->pathForResource("LocationsConfig", "plist");
    const auto locations = platform::propertyLists().readArray(resource.value_or(""));
    ASSERT_TRUE(locations);
    std::map<std::string, const PropertyList::Array*> found;
    for (const PropertyList& location : *locations) {
        const PropertyList::Array* record = location.array();
        ASSERT_TRUE(record && record->size() == 6U) << found.size();
        const std::string name = text(*record, 0) + ", " + text(*record, 1);
        EXPECT_THAT(name, testing::MatchesRegex("[^_]+, [^_]+"));
        EXPECT_TRUE(std::filesystem::is_regular_file("/usr/share/zoneinfo/" + text(*record, 2)))
            << name;
        EXPECT_THAT(text(*record, 5), testing::MatchesRegex("[A-Z][A-Z]")) << name;
        EXPECT_TRUE(found.emplace(name, record).second) << name;
    }
    EXPECT_GE(found.size(), 100U);

    // One per quadrant of the globe, with and without seconds in the table.
    for (const auto& [name, zone, latitude, longitude] :
         {std::tuple("Tokyo, Japan", "Asia/Tokyo", 35.65, 139.75),
          {"New York, United States", "America/New_York", 40.71, -74.01},
          {"São Paulo, Brazil", "America/Sao_Paulo", -23.53, -46.62},
          {"Sydney, Australia", "Australia/Sydney", -33.87, 151.22}}) {
        ASSERT_TRUE(found.contains(name)) << name;
        const PropertyList::Array& record = *found[name];
        EXPECT_EQ(text(record, 2), zone);
        EXPECT_NEAR(record.at(3).real().value_or(999), latitude, 0.01) << name;
        EXPECT_NEAR(record.at(4).real().value_or(999), longitude, 0.01) << name;
    }
}

} // namespace
