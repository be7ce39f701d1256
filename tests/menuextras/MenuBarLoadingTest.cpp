#include "platform/Bundle.h"
#include "platform/DynamicLoader.h"
#include "tests/menuextras/MenuExtraTree.h"

#include <stdexcept>

using test::kPane;
using Tools = HalvexMenuExtraTools;

namespace {

constexpr const char* kSystemClock = "com.apple.menuextra.clock";
constexpr const char* kCracker = "net.sourceforge.menucracker";

/// Says of every file what the test says.
class ScriptedLoader final : public platform::DynamicLoader {
  public:
    std::vector<int> architectures{16777223};
    std::optional<std::string> fault; ///< none: the file passes

    std::vector<int> executableArchitectures(const std::string&) const override {
        return architectures;
    }
    std::string fileOfAddress(const void*) const override { return {}; }
    int hostArchitecture() const override { return 0; }
    bool preflight(const std::string&, std::string& reason) const override {
        reason = fault.value_or("");
        return !fault;
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

    /// What is asked for appears in the bar at once.
    void loadsAtOnce(const std::string& identifier) {
        bar.onAdd = [this, identifier](const auto&) {
            bar.loaded.push_back(identifier);
            return 0;
        };
    }

    ScriptedLoader loader;
    const std::string url = "file:///Some%20where/X.menu";
    const std::string once = "add file:///Some%20where/X.menu 999 0 0 0 0";
};

TEST_F(MenuBarLoading, AnItemIsLoadedWithStatus0AndAReference) {
    Tools::removeExtra("X");
    EXPECT_EQ(log(), "Unable to remove menu extra \"X\", it is not loaded.");
    bar.loaded = {"X", HalvexTimeOnlyMenuID, Halvex2ASMid};
    EXPECT_TRUE(Tools::isExtraLoaded("X"));
    EXPECT_TRUE(Tools::isHalvexExtraLoaded(32));
    EXPECT_FALSE(Tools::isHalvexExtraLoaded(31));
    EXPECT_EQ(log(), "");
    for (const std::int32_t tag : {33, 7}) {
        EXPECT_FALSE(Tools::isHalvexExtraLoaded(tag)) << tag;
        EXPECT_EQ(log(), "bad tag sent to isHalvexExtraLoaded:");
    }
}

TEST_F(MenuBarLoading, WaitsTwiceAndLoadsMenuCrackerInBetween) {
    const std::string nil = "checkPreflight extraBundle nil - /Some where/X.menu";
    const std::string unable =
        nil + "\nloadExtraWithCrack: unable to load Halvex menu extra " + url + " bundleid X - ";
    const std::string withCracker = once + "\nadd file://P/MenuCracker.menu 0 0 0 0 0\n" + once;
    const struct {
        std::size_t sleepsUntilLoaded; ///< 99: never
        bool hasCracker;
        std::string requests;
        std::vector<std::int32_t> answers; ///< to the requests
        std::int32_t status;
        std::size_t sleeps;
        std::string log;
    } cases[] = {
        {8, false, once, {-50}, 0, 8, nil},
        {9, false, withCracker, {-1, -2, 0}, 0, 9, nil},
        {16, false, withCracker, {-1, 7, -50}, -50, 16, nil},
        {9, true, once, {-43}, -43, 9, nil},
        {99, false, withCracker, {5, 5, 0}, -1, 16, unable + "0\n"},
        {99, true, once, {-43}, -43, 16, unable + "-43\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.sleepsUntilLoaded << ' ' << c.hasCracker);
        bar.loaded.clear();
        if (c.hasCracker)
            bar.loaded.emplace_back(kCracker);
        clock.sleeps.clear();
        clock.duringSleep = [&] {
            if (clock.sleeps.size() == c.sleepsUntilLoaded)
                bar.loaded.emplace_back("X");
        };
        std::size_t answered = 0;
        bar.onAdd = [&](const auto&) { return c.answers.at(answered++); };
        EXPECT_EQ(Tools::loadExtraWithCrack(url, "X"), c.status);
        EXPECT_EQ(requests(), c.requests);
        EXPECT_EQ(clock.sleeps, std::vector<std::uint64_t>(c.sleeps, 250'000));
        EXPECT_EQ(log(), c.log);
    }
}

TEST_F(MenuBarLoading, LoadsWithoutAURLOnlyWhatIsThereAlready) {
    EXPECT_EQ(Tools::loadExtraWithCrack({}, "X"), -2);
    EXPECT_EQ(log(), "loadExtraWithCrack: invalid path: nil, id: X");
    bar.loaded = {"X"};
    EXPECT_EQ(Tools::loadExtraWithCrack({}, "X"), 0);
    EXPECT_EQ(requests() + log(), "");
}

TEST_F(MenuBarLoading, AsksASecondTimeAlsoWithoutAMenuCrackerToAskFor) {
    std::filesystem::remove_all(tree.place(kPane));
    Tools::loadExtraWithCrack(url, "X");
    EXPECT_EQ(requests(), once + '\n' + once);
    EXPECT_EQ(log().find("missing?"), std::string::npos) << "a missing pane is not logged";

    const auto nowhere = std::make_shared<platform::Bundle>(
        "relative",
        platform::PropertyList::Dictionary{{"CFBundleIdentifier", HalvexPrefsBundleID}});
    platform::Bundle::setCode(nowhere, platform::Bundle::Code::Loaded);
    Tools::loadExtraWithCrack(url, "X");
    platform::Bundle::setCode(nowhere, platform::Bundle::Code::Unloaded);
    EXPECT_EQ(requests(), once + '\n' + once);
    EXPECT_THAT(log(), testing::HasSubstr("\nMenuCracker not loaded -- missing?\n"));
}

TEST_F(MenuBarLoading, LooksAtABundleBeforeItIsLoadedAndOnlyLogs) {
    const std::string path = F + "/X.menu";
    tree.write(tree.shown(path) + "/Contents/Info.plist", infoPlist("1", "X"));
    install("NoCode.menu", "1");
    const std::string x = "file://" + platform::percentEncodedPath(F) + "/X.menu";
    const std::string noCode = "file://" + platform::percentEncodedPath(F) + "/NoCode.menu";
    const std::string arch = "checkPreflight: MenuExtra F/X.menu arch ";
    const std::string host = arch + "(16777223)";
    const auto logged = [&](const std::string& bundle, const std::vector<int>& architectures = {},
                            const std::optional<std::string>& fault = {}) {
        loader.architectures = architectures;
        loader.fault = fault;
        Tools::checkPreflight(bundle);
        return log();
    };
    EXPECT_EQ(logged(x, {16777223, 7}, "?"), arch + "(7, 16777223)");
    EXPECT_EQ(logged(x, {16777223, 7, 18}, "?"), "");
    myDebug = 1;
    EXPECT_EQ(logged("http://x/X.menu"), "checkPreflight not a file url");
    EXPECT_EQ(logged("file:///no/X.menu"), "checkPreflight extraBundle nil - /no/X.menu");
    EXPECT_EQ(logged("file://elsewhere/X.menu"), "checkPreflight extraBundle nil - (null)");
    EXPECT_EQ(logged(noCode), "checkPreflight: MenuExtra F/NoCode.menu arch ()\n"
                              "checkPreflight: executablePath nil");
    EXPECT_EQ(logged(x, {16777223}), host + "\nMenuExtra passed dlopen_preflight(F/X.menu)");
    EXPECT_EQ(logged(x, {16777223}, "gone"), host + "\nMenuExtra Error: \r\tgone\r");
    EXPECT_EQ(logged(x, {16777223}, ""), host + "\nMenuExtra Error: \r\tn/a\r");
    loadsAtOnce("X");
    loader.fault = "gone";
    EXPECT_EQ(Tools::loadExtraWithCrack(url, "X"), 0) << "it is tried all the same";
}

TEST_F(MenuBarLoading, TogglingOnInstallsLoadsAndTakesTheSystemsClockOutForTheClockAlone) {
    const std::pair<std::int32_t, std::pair<const char*, std::string>> cases[] = {
        {1, {HalvexMenuID, "HalvexTimeMenu.menu"}},
        {33, {HalvexTimeOnlyMenuID, "HalvexTimeOnlyMenuExtra.menu"}},
    };
    for (const auto& [tag, names] : cases) {
        const auto& [identifier, file] = names;
        ship(file, "2");
        bar.loaded = {kSystemClock};
        loadsAtOnce(identifier);
        Tools::menuExtraToggle(tag, -7);
        EXPECT_EQ(requests(), "add file://F/" + file + " 999 0 0 0 0" +
                                  (tag == 1 ? "\nremove com.apple.menuextra.clock 0" : ""));
        EXPECT_EQ(version(file), "2");
        EXPECT_EQ(log(), "installed MenuExtra F/" + file + "\ncheckPreflight: MenuExtra F/" + file +
                             " arch ()\ncheckPreflight: executablePath nil");
        Tools::menuExtraToggle(tag, 0);
        EXPECT_EQ(requests(), std::string("remove ") + identifier + " 0");
        EXPECT_EQ(version(file) + log(), "");
    }
}

TEST_F(MenuBarLoading, TogglingOnWhatIsLoadedOrDoesNotLoadLeavesTheSystemsClock) {
    bar.loaded = {HalvexMenuID, kSystemClock};
    Tools::menuExtraToggle(1, 1);
    EXPECT_EQ(requests(), "");
    EXPECT_EQ(version("HalvexTimeMenu.menu"), "2");

    bar.loaded = {kCracker, kSystemClock};
    Tools::menuExtraToggle(1, 1);
    EXPECT_EQ(requests(), "add file://F/HalvexTimeMenu.menu 999 0 0 0 0");
}

TEST_F(MenuBarLoading, ATagThatThereIsNotIsLogged) {
    EXPECT_EQ(Tools::menuExtraInstalledPaths(4), F + "/hxWirelessMenu.menu");
    for (const std::int32_t tag : {0, 7, -1}) {
        EXPECT_EQ(Tools::menuExtraPaths(tag), std::nullopt);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), std::nullopt);
        EXPECT_EQ(log(), "error tag not set\nerror tag not set") << tag;
    }
    EXPECT_EQ(Tools::menuExtraTagFromID("com.quorvanesoftware.halvexpromenu"), -1);
}

TEST_F(MenuBarLoading, ATogglesFailuresAreLogged) {
    const std::string cracker =
        "error tag not set\nHalvex Error: Menu Extra (null) - path: P/MenuCracker.menu";
    const std::string removal = "MenuExtra (com.quorvanesoftware.HalvexProMenu) removal failed.";
    install("HalvexTimeMenu.menu", "1");
    for (const auto& [tag, state] : {std::pair(31, 1), {32, 0}, {7, 1}}) {
        Tools::menuExtraToggle(tag, state);
        EXPECT_EQ(log(), cracker);
        EXPECT_EQ(version("HalvexTimeMenu.menu"), "1");
    }
    Tools::menuExtraToggle(1, 0);
    EXPECT_EQ(log(), removal);
    EXPECT_EQ(version("HalvexTimeMenu.menu"), "");
    EXPECT_EQ(tree.log.beeps(), 0);
    std::filesystem::remove_all(tree.place(kPane));
    Tools::menuExtraToggle(31, 1);
    EXPECT_EQ(log(), "MenuExtraTools - error halvex PrefsPluginPath nil");
    EXPECT_EQ(tree.log.beeps(), 1);
    EXPECT_EQ(requests(), "");
}

TEST_F(MenuBarLoading, ATogglePassesNoExceptionOn) {
    const std::pair<void (*)(), const char*> cases[] = {
        {[] { throw platform::Exception("Name", "why", "more"); },
         "name: Name   reason: why   userInfo: more"},
        {[] { throw platform::Exception("Name", "why"); },
         "name: Name   reason: why   userInfo: (null)"},
        {[] { throw std::runtime_error("why"); },
         "name: std::exception   reason: why   userInfo: (null)"},
        {[] { throw 1; }, "name: unknown   reason: (null)   userInfo: (null)"}};
    int beeps = 0;
    for (const auto& [raise, text] : cases) {
        bar.onAdd = [&](const auto&) {
            raise();
            return 0;
        };
        EXPECT_NO_THROW(Tools::menuExtraToggle(1, 1));
        EXPECT_THAT(log(), testing::EndsWith(std::string("\nMenuExtra had an exception ") + text));
        EXPECT_EQ(tree.log.beeps(), ++beeps);
    }
}

} // namespace
