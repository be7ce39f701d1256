#include "platform/Bundle.h"
#include "platform/DynamicLoader.h"
#include "tests/menuextras/MenuExtraTree.h"

#include <stdexcept>

using test::kPane;
using test::Lines;
using Tools = HalvexMenuExtraTools;

namespace {

constexpr const char* kClock = "com.quorvanesoftware.HalvexProMenu";
constexpr const char* kSystemClock = "com.apple.menuextra.clock";
constexpr const char* kCracker = "net.sourceforge.menucracker";

/// Says of every file what the test says.
class ScriptedLoader final : public platform::DynamicLoader {
  public:
    std::vector<int> architectures{16777223};
    bool passes = true;
    std::string reason;

    std::vector<int> executableArchitectures(const std::string&) const override {
        return architectures;
    }
    std::string fileOfAddress(const void*) const override { return {}; }
    int hostArchitecture() const override { return 0; }
    bool preflight(const std::string&, std::string& why) const override {
        why = reason;
        return passes;
    }
    std::unique_ptr<platform::LoadedCode> load(const std::string&, std::string&) override {
        return nullptr;
    }

  private:
    platform::ScopedService<platform::DynamicLoader> service_{*this};
};

class MenuBarLoading : public test::MenuExtraTree {
  protected:
    void SetUp() override { ship("HalvexTimeMenu.menu", "2"); }

    /// The item appears in the bar while its waiting process sleeps for this time.
    void appearAfterSleeps(std::size_t sleeps, const std::string& identifier) {
        clock.duringSleep = [this, sleeps, identifier] {
            if (clock.sleeps.size() == sleeps)
                bar.loaded.push_back(identifier);
        };
    }

    ScriptedLoader loader;
    const std::string url = "file:///Some%20where/X.menu";
    const Lines once{"add file:///Some%20where/X.menu 999 0 0 0 0"};
    const Lines withCracker{once[0], "add file://P/MenuCracker.menu 0 0 0 0 0", once[0]};
    const Lines nil{"checkPreflight extraBundle nil - /Some where/X.menu"};
};

TEST_F(MenuBarLoading, AnItemIsLoadedWithStatus0AndAReference) {
    EXPECT_FALSE(Tools::isExtraLoaded(kClock));
    Tools::removeExtra(kClock);
    EXPECT_EQ(lines(), Lines{"Unable to remove menu extra \"" + std::string(kClock) +
                             "\", it is not loaded."});
    bar.loaded = {kClock, HalvexTimeOnlyMenuID, Halvex2ASMid};
    EXPECT_TRUE(Tools::isExtraLoaded(kClock));
    for (const auto& [tag, isLoaded] : {std::pair(1, true), {2, false}, {32, true}, {31, false}})
        EXPECT_EQ(Tools::isHalvexExtraLoaded(tag), isLoaded) << tag;
    EXPECT_EQ(lines(), Lines());
    for (const std::int32_t tag : {33, 0, 7, -1})
        EXPECT_FALSE(Tools::isHalvexExtraLoaded(tag)) << tag;
    EXPECT_EQ(lines(), Lines(4, "bad tag sent to isHalvexExtraLoaded:"));
}

TEST_F(MenuBarLoading, WaitsTwiceAndLoadsMenuCrackerInBetween) {
    const auto unable = [this](int status) {
        return "loadExtraWithCrack: unable to load Halvex menu extra " + url + " bundleid X - " +
               std::to_string(status) + "\n";
    };
    const struct {
        const char* name;
        std::size_t sleepsUntilLoaded; ///< 0: from the start, 99: never
        bool hasCracker;
        Lines requests;
        std::vector<std::int32_t> answers; ///< to the requests
        std::int32_t status;
        std::size_t sleeps;
        Lines lines;
    } cases[] = {
        {"loaded before", 0, false, {}, {}, 0, 0, {}},
        {"in the first wait", 3, false, once, {-50}, 0, 3, nil},
        {"at the end of the first wait", 8, false, once, {-50}, 0, 8, nil},
        {"in the second wait", 9, false, withCracker, {-1, -2, 0}, 0, 9, nil},
        {"in the second wait, refused", 16, false, withCracker, {-1, 7, -50}, -50, 16, nil},
        {"with MenuCracker there", 9, true, once, {-43}, -43, 9, nil},
        {"never", 99, false, withCracker, {5, 5, 0}, -1, 16, {nil[0], unable(0)}},
        {"never, refused", 99, true, once, {-43}, -43, 16, {nil[0], unable(-43)}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bar.loaded = c.hasCracker ? Lines{kCracker} : Lines();
        if (c.sleepsUntilLoaded == 0)
            bar.loaded.emplace_back("X");
        clock.sleeps.clear();
        appearAfterSleeps(c.sleepsUntilLoaded, "X");
        std::size_t answered = 0;
        bar.onAdd = [&](const auto&) { return c.answers.at(answered++); };
        EXPECT_EQ(Tools::loadExtraWithCrack(url, "X"), c.status);
        EXPECT_EQ(requests(), c.requests);
        EXPECT_EQ(clock.sleeps, std::vector<std::uint64_t>(c.sleeps, 250'000));
        EXPECT_EQ(lines(), c.lines);
    }
}

TEST_F(MenuBarLoading, LoadsWithoutAURLOnlyWhatIsThereAlready) {
    EXPECT_EQ(Tools::loadExtraWithCrack({}, "X"), -2);
    EXPECT_EQ(lines(), Lines{"loadExtraWithCrack: invalid path: nil, id: X"});
    bar.loaded = {"X"};
    EXPECT_EQ(Tools::loadExtraWithCrack({}, "X"), 0);
    EXPECT_EQ(requests(), Lines());
}

TEST_F(MenuBarLoading, AsksASecondTimeAlsoWithoutAMenuCrackerToAskFor) {
    std::filesystem::remove_all(tree.place(kPane));
    Tools::loadExtraWithCrack(url, "X");
    EXPECT_EQ(requests(), (Lines{once[0], once[0]}));
    EXPECT_EQ(lines().size(), 2U) << "a missing pane is not logged";

    const auto nowhere = std::make_shared<platform::Bundle>(
        "relative",
        platform::PropertyList::Dictionary{{"CFBundleIdentifier", HalvexPrefsBundleID}});
    platform::Bundle::setCode(nowhere, platform::Bundle::Code::Loaded);
    Tools::loadExtraWithCrack(url, "X");
    platform::Bundle::setCode(nowhere, platform::Bundle::Code::Unloaded);
    EXPECT_EQ(requests(), (Lines{once[0], once[0]}));
    EXPECT_EQ(lines().at(1), "MenuCracker not loaded -- missing?");
}

TEST_F(MenuBarLoading, LooksAtABundleBeforeItIsLoadedAndOnlyLogs) {
    tree.write("~/X.menu/Contents/Info.plist", infoPlist("1", "X"));
    tree.write("~/NoCode.menu/Contents/Info.plist", infoPlist("1"));
    const std::string path = tree.path("~/X.menu");
    const std::string x = "file://" + path;
    const auto arch = [&](const std::string& list, const std::string& of) {
        return "checkPreflight: MenuExtra " + of + " arch " + list;
    };
    const std::string host = arch("(16777223)", path);
    const struct {
        std::string url;
        std::vector<int> architectures;
        bool passes;
        std::string reason;
        std::int32_t debug;
        Lines lines;
    } cases[] = {
        {"http://x/X.menu", {}, true, "", 1, {"checkPreflight not a file url"}},
        {"", {}, true, "", 1, {"checkPreflight not a file url"}},
        {"file:///no/X.menu", {}, true, "", 1, {"checkPreflight extraBundle nil - /no/X.menu"}},
        {"file://elsewhere/X.menu", {}, true, "", 1, {"checkPreflight extraBundle nil - (null)"}},
        {"file://" + tree.path("~/NoCode.menu"),
         {},
         true,
         "",
         1,
         {arch("()", tree.path("~/NoCode.menu")), "checkPreflight: executablePath nil"}},
        {x, {16777223, 7}, false, "?", 0, {arch("(7, 16777223)", path)}},
        {x, {16777223, 7, 18}, false, "?", 0, {}},
        {x, {16777223}, true, "", 0, {host}},
        {x, {16777223}, true, "", 1, {host, "MenuExtra passed dlopen_preflight(" + path + ")"}},
        {x,
         {16777223},
         false,
         "no such library",
         1,
         {host, "MenuExtra Error: \r\tno such library\r"}},
        {x, {16777223}, false, "", 1, {host, "MenuExtra Error: \r\tn/a\r"}},
    };
    for (const auto& c : cases) {
        loader.architectures = c.architectures;
        loader.passes = c.passes;
        loader.reason = c.reason;
        myDebug = c.debug;
        Tools::checkPreflight(c.url);
        EXPECT_EQ(tree.log.take(), c.lines) << c.url << c.debug;
    }
    bar.onAdd = [&](const auto&) {
        bar.loaded.emplace_back("X");
        return 0;
    };
    loader.passes = false;
    EXPECT_EQ(Tools::loadExtraWithCrack(x, "X"), 0) << "it is tried all the same";
}

TEST_F(MenuBarLoading, TogglingOnInstallsLoadsAndTakesTheSystemsClockOutForTheClockAlone) {
    const struct {
        std::int32_t tag;
        const char* file;
        const char* identifier;
        bool clockGoes;
    } cases[] = {{1, "HalvexTimeMenu.menu", kClock, true},
                 {2, "HalvexASMMenu.menu", HalvexASMid, false},
                 {33, "HalvexTimeOnlyMenuExtra.menu", HalvexTimeOnlyMenuID, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        ship(c.file, "2");
        bar.loaded = {kSystemClock};
        bar.onAdd = [&](const auto&) {
            bar.loaded.emplace_back(c.identifier);
            return 0;
        };
        Tools::menuExtraToggle(c.tag, -7);
        Lines expected{"add file://F/" + std::string(c.file) + " 999 0 0 0 0"};
        if (c.clockGoes)
            expected.push_back("remove " + std::string(kSystemClock) + " 0");
        EXPECT_EQ(requests(), expected);
        EXPECT_TRUE(isInstalled(c.file, "2"));
        EXPECT_EQ(lines(), (Lines{"installed MenuExtra F/" + std::string(c.file),
                                  "checkPreflight: MenuExtra F/" + std::string(c.file) + " arch ()",
                                  "checkPreflight: executablePath nil"}));
        Tools::menuExtraToggle(c.tag, 0);
        EXPECT_EQ(requests(), Lines{"remove " + std::string(c.identifier) + " 0"});
        EXPECT_TRUE(isInstalled(c.file, ""));
        EXPECT_EQ(lines(), Lines());
    }
}

TEST_F(MenuBarLoading, TogglingOnWhatIsLoadedOrDoesNotLoadLeavesTheSystemsClock) {
    bar.loaded = {kClock, kSystemClock};
    Tools::menuExtraToggle(1, 1);
    EXPECT_EQ(requests(), Lines());
    EXPECT_TRUE(isInstalled("HalvexTimeMenu.menu", "2"));

    bar.loaded = {kCracker, kSystemClock};
    Tools::menuExtraToggle(1, 1);
    EXPECT_EQ(requests(), Lines{"add file://F/HalvexTimeMenu.menu 999 0 0 0 0"});
}

TEST_F(MenuBarLoading, ATogglesFailuresAreLogged) {
    const Lines cracker{"error tag not set",
                        "Halvex Error: Menu Extra (null) - path: P/MenuCracker.menu"};
    const Lines removal{"MenuExtra (" + std::string(kClock) + ") removal failed."};
    const Lines pane{"MenuExtraTools - error halvex PrefsPluginPath nil"};
    const struct {
        std::int32_t tag;
        std::int32_t state;
        bool hasPane;
        Lines lines;
        int beeps;
    } cases[] = {{31, 1, true, cracker, 0}, {32, 0, true, cracker, 0}, {7, 1, true, cracker, 0},
                 {1, 0, true, removal, 0},  {1, 1, false, pane, 1},    {31, 1, false, pane, 1}};
    for (const auto& c : cases) {
        install("HalvexTimeMenu.menu", "1");
        if (!c.hasPane)
            std::filesystem::remove_all(tree.place(kPane));
        const int beeps = tree.log.beeps();
        Tools::menuExtraToggle(c.tag, c.state);
        EXPECT_EQ(lines(), c.lines) << c.tag;
        EXPECT_EQ(tree.log.beeps() - beeps, c.beeps);
        EXPECT_EQ(requests(), Lines());
        EXPECT_TRUE(isInstalled("HalvexTimeMenu.menu", c.lines == removal ? "" : "1")) << c.tag;
    }
}

TEST_F(MenuBarLoading, ATogglePassesNoExceptionOn) {
    install("HalvexTimeMenu.menu", "2");
    const std::string start = "MenuExtra had an exception name: ";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[] { throw platform::Exception("Name", "why", "more"); },
         "Name   reason: why   userInfo: more"},
        {[] { throw platform::Exception("Name", "why"); }, "Name   reason: why   userInfo: (null)"},
        {[] { throw std::runtime_error("why"); },
         "std::exception   reason: why   userInfo: (null)"},
        {[] { throw 1; }, "unknown   reason: (null)   userInfo: (null)"}};
    int beeps = 0;
    for (const auto& [raise, text] : cases) {
        bar.onAdd = [&](const auto&) {
            raise();
            return 0;
        };
        EXPECT_NO_THROW(Tools::menuExtraToggle(1, 1));
        EXPECT_EQ(lines().back(), start + text);
        EXPECT_EQ(tree.log.beeps(), ++beeps);
    }
}

} // namespace
