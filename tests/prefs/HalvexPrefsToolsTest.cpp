#include "prefs/HalvexPrefsTools.h"

#include "platform/ScriptRunner.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/ApplicationServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <thread>

using testing::ElementsAre;
using Tools = HalvexPrefsTools;

namespace {

/// Returns the given error, and reports the script and the thread that ran it.
class FakeScripts final : public platform::ScriptRunner {
  public:
    std::optional<std::string> error;
    std::promise<std::pair<std::string, std::thread::id>> ran;

    std::optional<std::string> run(const std::string& script) override {
        const auto result = error;
        auto promise = std::move(ran); // set_value lets the test destroy this object
        promise.set_value({script, std::this_thread::get_id()});
        return result;
    }

  private:
    platform::ScopedService<platform::ScriptRunner> service_{*this};
};

class PrefsTools : public testing::Test {
  protected:
    test::SupportTree tree{{}};
    test::ApplicationServices services;
};

TEST_F(PrefsTools, FindALocalPaneBeforeTheUsersAndLogAMissingOne) {
    EXPECT_EQ(Tools::HalvexPrefsBundle(), nullptr);
    EXPECT_EQ(Tools::HalvexOpenPrefs(), std::nullopt);
    EXPECT_EQ(Tools::getHalvexBGApplicationPath(), std::nullopt);
    EXPECT_THAT(tree.log.take(), ElementsAre("Halvex Pref bundle not found.",
                                             "Halvex error: getHalvexPath failed\n"));
    EXPECT_THAT(services.journal(), ElementsAre());
    const std::string paths[] = {
        // each one is preferred to those before it
        "~/Library/PreferencePanes/HalvexPro.prefPane",
        "~/Library/PreferencePanes/Halvex Pro.prefPane",
        "/Library/PreferencePanes/HalvexPro.prefPane",
        "/Library/PreferencePanes/Halvex Pro.prefPane",
    };
    for (const std::string& path : paths) {
        tree.make(path);
        EXPECT_EQ(Tools::HalvexPrefsPath(), tree.path(path));
    }
    const test::LoadedPane loaded("/Loaded");
    EXPECT_EQ(Tools::HalvexPrefsBundle(), loaded.bundle);
    EXPECT_EQ(Tools::getHalvexBGApplicationPath(), "/Loaded/Contents/PlugIns/Halvex.app");
}

TEST_F(PrefsTools, OpenThePaneAndReturnItsPathEvenIfOpeningFails) {
    tree.make("~/Library/PreferencePanes/HalvexPro.prefPane");
    const std::string path = tree.path("~/Library/PreferencePanes/HalvexPro.prefPane");
    EXPECT_EQ(Tools::HalvexOpenPrefs(), path);
    services.opens = false;
    EXPECT_EQ(Tools::HalvexOpenPrefs(), path);
    const std::string request = "open " + path + " with System Preferences";
    EXPECT_THAT(services.journal(), ElementsAre(request, request));
    EXPECT_THAT(tree.log.take(), ElementsAre("Halvex Prefs opened at: " + path,
                                             "Halvex Prefs failed to open " + path));
}

TEST_F(PrefsTools, SelectAPaneWithAScriptOnAnotherThread) {
    const std::string script = "tell application \"System Preferences\"\nactivate\n"
                               "set the current pane to pane id \"com.example.a%@b\"\nend tell\n";
    FakeScripts scripts;
    auto ran = scripts.ran.get_future();
    Tools::openPrefsSelected("com.example.a%@b");
    const auto [text, thread] = ran.get();
    EXPECT_EQ(text, script);
    EXPECT_NE(thread, std::this_thread::get_id());

    FakeScripts failing;
    failing.error = "no such pane";
    Tools::openPrefsThread("com.example.a%@b");
    EXPECT_THAT(tree.log.take(), ElementsAre("AppleScript:" + script + "\n error: no such pane"));
}

TEST_F(PrefsTools, FindTheFirstBackgroundApplicationOfThisGeneration) {
    const std::string old = "old Halvex 2 version running";
    const struct {
        std::vector<std::string> running;
        platform::ProcessSerialNumber found; // 9: not found
        std::size_t oldLines;
    } cases[] = {
        {{}, 9, 0},
        {{"halvex", "Halvex.app", " Halvex"}, 9, 0},
        {{"Halvex 2", "Halvex 2"}, 9, 2},
        {{"Halvex 2", "Halvex", "Halvex"}, 2, 1},
        {{"a", "b", "Halvex", "Halvex 2"}, 3, 0},
    };
    for (const auto& [running, found, oldLines] : cases) {
        services.running = running;
        platform::ProcessSerialNumber process = 9;
        EXPECT_EQ(Tools::findHalvexBGProcess(&process), found != 9);
        EXPECT_EQ(process, found);
        EXPECT_EQ(tree.log.take(), std::vector(oldLines, old));
        EXPECT_EQ(Tools::findHalvexBGProcess(nullptr), found != 9);
        tree.log.take();
    }
}

} // namespace
