#include "platform/DynamicLoader.h"
#include "tests/menuextras/MenuExtraTree.h"

#include <stdexcept>

using test::kPane;
using Tools = HalvexMenuExtraTools;

namespace {

constexpr const char* kSystemClock = "com.apple.menuextra.clock";
constexpr const char* kCracker = "net.sourceforge.menucracker";

struct Kind {
    std::int32_t tag;
    std::string identifier, file;
    bool isQueryable = true, isToggleable = true;
};
const Kind kKinds[] = {
    {1, HalvexMenuID, "HalvexTimeMenu.menu"},
    {2, HalvexASMid, "HalvexASMMenu.menu"},
    {3, HalvexTodoID, "hxCALMenuExtra.menu"},
    {4, HalvexNetMenuID, "hxWirelessMenu.menu"},
    {5, HalvexProCalMenuID, "HalvexDateCalMenu.menu"},
    {6, HalvexProOldCalMenuID, "qvCalendarMenu.menu"},
    {31, Halvex2MenuID, "HalvexMenu.menu", true, false},
    {32, Halvex2ASMid, "hxASMMenu.menu", true, false},
    {33, HalvexTimeOnlyMenuID, "HalvexTimeOnlyMenuExtra.menu", false, true},
};

/// Returns the same architectures and preflight result for every file.
class FixedLoader final : public platform::DynamicLoader {
  public:
    std::vector<int> architectures{16777223};
    std::optional<std::string> fault; ///< std::nullopt: preflight succeeds

    std::vector<int> executableArchitectures(const std::string&) const override {
        return architectures;
    }
    std::string fileOfAddress(const void*) const override { return {}; }
    int hostArchitecture() const override { return 0; }
    bool preflight(const std::string&, std::string& reason) const override {
        reason = fault.value_or("");
        return !fault;
    }
    std::string refusalReason(const platform::TrustedFile&) const override { return {}; }
    std::unique_ptr<platform::LoadedCode> load(std::shared_ptr<const platform::TrustedFile>,
                                               std::string&) override {
        return nullptr;
    }

  private:
    platform::ScopedService<platform::DynamicLoader> service_{*this};
};

class MenuBarLoading : public test::MenuExtraTree {
  protected:
    void SetUp() override { ship("HalvexTimeMenu.menu", "2"); }

    void loadImmediately(const std::string& identifier) {
        bar.onAdd = [this, identifier](const auto&) {
            bar.loaded.push_back(identifier);
            return 0;
        };
    }

    FixedLoader loader;
    const std::string url = "file:///Some%20where/X.menu";
    const std::string request = "add file:///Some%20where/X.menu 999 0 0 0 0";
};

TEST_F(MenuBarLoading, MapsEachTagToItsIdentifierAndFile) {
    for (const Kind& kind : kKinds) {
        EXPECT_EQ(Tools::menuExtraTagFromID(kind.identifier), kind.tag);
        EXPECT_EQ(Tools::menuExtraPaths(kind.tag), P + '/' + kind.file);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(kind.tag), F + '/' + kind.file);
        bar.loaded = {kind.identifier};
        for (const Kind& other : kKinds) {
            EXPECT_EQ(Tools::isHalvexExtraLoaded(other.tag), &other == &kind && kind.isQueryable);
            EXPECT_EQ(log(), other.isQueryable ? "" : "bad tag sent to isHalvexExtraLoaded:");
        }
    }
    EXPECT_EQ(Tools::menuExtraTagFromID("com.quorvanesoftware.halvexpromenu"), -1);
}

TEST_F(MenuBarLoading, LogsUnknownTagsUnlessThePaneIsMissing) {
    for (const std::int32_t tag : {0, 7, -1}) {
        EXPECT_EQ(Tools::menuExtraPaths(tag), std::nullopt);
        EXPECT_EQ(Tools::menuExtraInstalledPaths(tag), std::nullopt);
        EXPECT_FALSE(Tools::isHalvexExtraLoaded(tag));
        EXPECT_EQ(log(), "error tag not set\nerror tag not set\n"
                         "bad tag sent to isHalvexExtraLoaded:")
            << tag;
    }
    std::filesystem::remove_all(tree.systemPath(kPane));
    EXPECT_EQ(Tools::menuExtraPaths(7), std::nullopt);
    EXPECT_EQ(log(), "");
}

TEST_F(MenuBarLoading, CountsAMenuExtraAsLoadedOnlyWithStatus0AndAReference) {
    for (const auto& [status, reference, isLoaded] :
         {std::tuple(0, 5U, true), {0, 0U, false}, {-1, 5U, false}}) {
        bar.loaded.assign(reference, "X");
        bar.result = {status, reference};
        EXPECT_EQ(Tools::isExtraLoaded("X"), isLoaded) << status << ' ' << reference;
        Tools::removeExtra("X");
        EXPECT_EQ(log(), isLoaded ? "" : "Unable to remove menu extra \"X\", it is not loaded.");
    }
}

TEST_F(MenuBarLoading, WaitsForALoadAndRepeatsItWithMenuCracker) {
    const std::string nil = "checkPreflight extraBundle nil - /Some where/X.menu";
    const std::string unable =
        nil + "\nloadExtraWithCrack: unable to load Halvex menu extra " + url + " bundleid X - ";
    const std::string withCracker =
        request + "\nadd file://P/MenuCracker.menu 0 0 0 0 0\n" + request;
    const struct {
        std::size_t sleepsUntilLoaded; ///< 99: never
        bool hasCracker;
        std::string requests;
        std::vector<std::int32_t> statuses; ///< of the requests
        std::int32_t status;
        std::size_t sleeps;
        std::string log;
    } cases[] = {
        {8, false, request, {-50}, 0, 8, nil},
        {9, false, withCracker, {-1, -2, 0}, 0, 9, nil},
        {16, false, withCracker, {-1, 7, -50}, -50, 16, nil},
        {9, true, request, {-43}, -43, 9, nil},
        {99, false, withCracker, {5, 5, 0}, -1, 16, unable + "0\n"},
        {99, true, request, {-43}, -43, 16, unable + "-43\n"},
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
        std::size_t next = 0;
        bar.onAdd = [&](const auto&) { return c.statuses.at(next++); };
        EXPECT_EQ(Tools::loadExtraWithCrack(url, "X"), c.status);
        EXPECT_EQ(requests(), c.requests);
        EXPECT_EQ(clock.sleeps, std::vector<std::uint64_t>(c.sleeps, 250'000));
        EXPECT_EQ(log(), c.log);
    }
}

TEST_F(MenuBarLoading, ReportsAMissingURLUnlessTheMenuExtraIsLoaded) {
    EXPECT_EQ(Tools::loadExtraWithCrack({}, "X"), -2);
    EXPECT_EQ(log(), "loadExtraWithCrack: invalid path: nil, id: X");
    bar.loaded = {"X"};
    EXPECT_EQ(Tools::loadExtraWithCrack({}, "X"), 0);
    EXPECT_EQ(requests() + log(), "");
}

TEST_F(MenuBarLoading, RepeatsALoadEvenWithoutMenuCracker) {
    std::filesystem::remove_all(tree.systemPath(kPane));
    Tools::loadExtraWithCrack(url, "X");
    EXPECT_EQ(requests(), request + '\n' + request);
    EXPECT_THAT(log(), testing::Not(testing::HasSubstr("missing?"))) << "the pane is missing";

    const test::LoadedPane pane("relative");
    Tools::loadExtraWithCrack(url, "X");
    EXPECT_EQ(requests(), request + '\n' + request);
    EXPECT_THAT(log(), testing::HasSubstr("\nMenuCracker not loaded -- missing?\n"));
}

TEST_F(MenuBarLoading, LogsThePreflightResultAndLoadsAnyway) {
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
    EXPECT_EQ(logged(x, {16777223}, "corrupt"), host + "\nMenuExtra Error: \r\tcorrupt\r");
    EXPECT_EQ(logged(x, {16777223}, ""), host + "\nMenuExtra Error: \r\tn/a\r");
    loadImmediately("X");
    loader.fault = "corrupt";
    EXPECT_EQ(Tools::loadExtraWithCrack(url, "X"), 0);
}

TEST_F(MenuBarLoading, TogglingInstallsAndLoadsThenUnloadsAndRemoves) {
    for (const auto& [tag, identifier, file, isQueryable, isToggleable] : kKinds) {
        SCOPED_TRACE(tag);
        ship(file, "2");
        bar.loaded = {kSystemClock};
        loadImmediately(identifier);
        Tools::menuExtraToggle(tag, -7);
        if (!isToggleable) {
            Tools::menuExtraToggle(tag, 0);
            const std::string refused =
                "error tag not set\nHalvex Error: Menu Extra (null) - path: P/MenuCracker.menu";
            EXPECT_EQ(requests() + version(file) + log(), refused + '\n' + refused);
            continue;
        }
        EXPECT_EQ(requests(), "add file://F/" + file + " 999 0 0 0 0" +
                                  (tag == 1 ? "\nremove com.apple.menuextra.clock 0" : ""));
        EXPECT_EQ(version(file), "2");
        EXPECT_EQ(log(), "installed MenuExtra F/" + file + "\ncheckPreflight: MenuExtra F/" + file +
                             " arch ()\ncheckPreflight: executablePath nil");
        Tools::menuExtraToggle(tag, 0);
        EXPECT_EQ(requests(), "remove " + identifier + " 0");
        EXPECT_EQ(version(file) + log(), "");
    }
}

TEST_F(MenuBarLoading, UnloadsTheSystemsClockOnlyAfterAFreshLoad) {
    bar.loaded = {HalvexMenuID, kSystemClock};
    Tools::menuExtraToggle(1, 1);
    EXPECT_EQ(requests(), "");
    EXPECT_EQ(version("HalvexTimeMenu.menu"), "2");

    bar.loaded = {kCracker, kSystemClock};
    Tools::menuExtraToggle(1, 1);
    EXPECT_EQ(requests(), "add file://F/HalvexTimeMenu.menu 999 0 0 0 0");
}

TEST_F(MenuBarLoading, LogsWhyAToggleFails) {
    install("HalvexTimeMenu.menu", "1");
    Tools::menuExtraToggle(1, 0);
    EXPECT_EQ(log(), "MenuExtra (com.quorvanesoftware.HalvexProMenu) removal failed.");
    EXPECT_EQ(version("HalvexTimeMenu.menu"), "");
    EXPECT_EQ(tree.log.beeps(), 0);
    std::filesystem::remove_all(tree.systemPath(kPane));
    Tools::menuExtraToggle(31, 1);
    EXPECT_EQ(log(), "MenuExtraTools - error halvex PrefsPluginPath nil");
    EXPECT_EQ(tree.log.beeps(), 1);
    EXPECT_EQ(requests(), "");
}

TEST_F(MenuBarLoading, LogsExceptionsInAToggleAndDoesNotRethrowThem) {
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
        bar.onAdd = [&raise = raise](const auto&) {
            raise();
            return 0;
        };
        EXPECT_NO_THROW(Tools::menuExtraToggle(1, 1));
        EXPECT_THAT(log(), testing::EndsWith(std::string("\nMenuExtra had an exception ") + text));
        EXPECT_EQ(tree.log.beeps(), ++beeps);
    }
}

} // namespace
