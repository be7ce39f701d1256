#include "menuextras/MenuExtraTools.h"
#include "menuextras/RunCommand.h"
#include "platform/ScriptRunner.h"
#include "platform/base/NeverDestroyed.h"
#include "prefs/HalvexPrefsTools.h"
#include "tests/memory/Tree.h"
#include "tests/support/ApplicationServices.h"
#include "tests/support/Fakes.h"

using Tools = HalvexMenuExtraTools;

namespace {

const std::string kPane = "/Library/PreferencePanes/Halvex Pro.prefPane";
const std::string kClock = "HalvexTimeMenu.menu";
const std::string kShipped = kPane + "/Contents/PlugIns/" + kClock;
const std::string kInstalled = test::kUserMaker + std::string("/Menu Extras/") + kClock;

std::string infoPlist(const std::string& version) {
    return "<plist><dict><key>CFBundleVersion</key><string>" + version + "</string></dict></plist>";
}

class MenuExtraOperations : public test::Tree {
  protected:
    MenuExtraOperations() {
        tree.make(test::kUserMaker + std::string("/Menu Extras"));
        tree.write(kShipped + "/Contents/Info.plist", infoPlist("2"));
        tree.write(kShipped + "/Contents/Linux/Code of the clock", "code");
        workspace.recycles = false;
        bar.onAdd = [this](const std::string&) {
            bar.loaded.emplace_back(HalvexMenuID);
            return 0;
        };
    }

    /// Returns a function that installs a version, or none.
    std::function<void()> installed(const std::string& version) {
        return [this, version] {
            std::filesystem::remove_all(tree.path(kInstalled));
            if (!version.empty())
                tree.write(kInstalled + "/Contents/Info.plist", infoPlist(version));
            bar.loaded = {};
            if (!version.empty())
                bar.loaded = {HalvexMenuID, Halvex2MenuID};
        };
    }
    /// Returns the installed version, "none", or "partial" for a copy without a version.
    std::string state() const {
        if (!tree.exists(kInstalled))
            return withLeftovers("none");
        const std::string info = kInstalled + "/Contents/Info.plist";
        const std::string text = tree.exists(info) ? tree.read(info) : "";
        const auto version = text.find("</string>");
        return withLeftovers(version == text.npos ? "partial" : text.substr(version - 1, 1));
    }

    test::RecordingMenuBar bar;
    test::ManualClock clock;
    test::RecordingWorkspace workspace;
};

TEST_F(MenuExtraOperations, FailIfMemoryRunsOut) {
    const std::string shipped = kShipped;
    const std::string identifier = HalvexMenuID;
    const std::optional<std::string> url = "file://" + tree.path(kInstalled);
    const std::string command = "seq 1000 1200 # 201 lines";
    const auto now = [this] { return state(); };
    const auto none = installed("");
    const auto old = installed("1");
    test::failEachAllocation(
        log, {
                 {"pane", Tools::HalvexPrefsPanelPath, {"nullopt"}},
                 {"plug-ins", Tools::HalvexPrefsPlugins, {"nullopt"}},
                 {"shipped path", [] { return Tools::menuExtraPaths(1); }, {"nullopt"}},
                 {"installed path", [] { return Tools::menuExtraInstalledPaths(1); }, {"nullopt"}},
                 {"install",
                  [&] { return Tools::installMenuExtra(shipped); },
                  {"false none"},
                  none,
                  now},
                 // The old copy may stay, or be replaced before the operation fails.
                 {"replace",
                  [&] { return Tools::installMenuExtra(shipped); },
                  {"false 1", "true 1", "false none", "false 2"},
                  old,
                  now},
                 {"remove", [&] { return Tools::removeMenuExtra(shipped); }, {"false 1"}, old, now},
                 {"upgrade one",
                  [] { return Tools::DoUpgradeIfNeeded(1); },
                  {"false 1", "true 1", "false none", "true none", "false 2"},
                  old,
                  now},
                 {"upgrade all",
                  [] { return Tools::DoUpgradeIfNeeded(); },
                  {"false 1", "true 1", "false none", "true none", "false 2"},
                  old,
                  now},
                 {"old generation runs", Tools::isHalvexV2Running, {"false"}, old},
                 {"remove old generation", Tools::HalvexV2Remove, {}, old},
                 {"remove all", Tools::HalvexProRemove, {}, old},
                 {"is loaded", [&] { return Tools::isExtraLoaded(identifier); }, {"false"}, old},
                 {"is tag loaded", [] { return Tools::isHalvexExtraLoaded(1); }, {"false"}, old},
                 {"unload", [&] { Tools::removeExtra(identifier); }, {}, old},
                 {"preflight", [&] { Tools::checkPreflight(*url); }, {}, old},
                 {"load", [&] { return Tools::loadExtraWithCrack(url, identifier); }, {"-1"}, none},
                 {"turn on", [] { Tools::menuExtraToggle(1, 1); }, {"done none"}, none, now},
                 {"turn off", [] { Tools::menuExtraToggle(1, 0); }, {"done 1"}, old, now},
                 {"read output",
                  [&] { return HalvexRunCommand::HalvexUtilGetPipeData(command); },
                  {"nullopt"}},
             });
}

TEST_F(MenuExtraOperations, ReportAFailedAllocationInAToggleAsAnException) {
    const test::RecordingLog lines;
    bool failed = true;
    for (int number = 1; failed && !lines.contains("MenuExtra had an exception"); ++number) {
        installed("1")();
        const test::FailingAllocation allocation(number);
        Tools::menuExtraToggle(1, 0);
        failed = allocation.hasFailed();
    }
    EXPECT_TRUE(lines.contains("MenuExtra had an exception name: std::exception   "
                               "reason: std::bad_alloc   userInfo: (null)"));
    EXPECT_EQ(lines.beeps(), 1);
}

/// Selects no pane. Not destroyed, because the threads that use it are detached.
class NoScripts final : public platform::ScriptRunner {
    std::optional<std::string> run(const std::string&) override {
        return "an error that does not fit into a small string";
    }
};

TEST_F(MenuExtraOperations, OfThePreferencesFailIfMemoryRunsOut) {
    static platform::NeverDestroyed<NoScripts> scripts;
    platform::exchangeService<platform::ScriptRunner>(&scripts.get());
    test::ApplicationServices services;
    services.running = {"Halvex 2", "Halvex"};
    const std::string pane = "com.quorvanesoftware.prefHalvexPanel";
    platform::ProcessSerialNumber process = 0;
    using Prefs = HalvexPrefsTools;
    test::failEachAllocation(
        log, {
                 {"pane", Prefs::HalvexPrefsBundle, {"null"}},
                 {"path", Prefs::HalvexPrefsPath, {"nullopt"}},
                 {"open", Prefs::HalvexOpenPrefs, {"nullopt"}},
                 {"select", [&] { Prefs::openPrefsSelected(pane); }},
                 {"select on this thread", [&] { Prefs::openPrefsThread(pane); }},
                 {"application", Prefs::getHalvexBGApplicationPath, {"nullopt"}},
                 {"process", [&] { return Prefs::findHalvexBGProcess(&process); }, {"false"}},
             });
}

} // namespace
