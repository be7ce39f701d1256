#include "identifiers/ExportedIdentifiers.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/ApplicationServices.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace platform;
using namespace testing;

namespace {

const std::string kApplication = "/Pane.prefPane/Contents/PlugIns/Halvex.app";
const std::string kLaunching = "Halvex Time - launching Halvex.app - ";

class BackgroundHandOver : public Test {
  protected:
    void TearDown() override { myDebug = 0; }

    test::SupportTree tree;
    test::ManualClock clock;
    test::ApplicationServices services;
    std::optional<test::LoadedPane> pane{"/Pane.prefPane"};
    std::shared_ptr<HalvexMenuExtraBase> extra = std::make_shared<HalvexMenuExtraBase>();
};

TEST_F(BackgroundHandOver, NotifiesARunningApplicationWithoutWaiting) {
    services.running = {"something", "Halvex"};
    extra->HalvexLaunchThread("Request");
    EXPECT_THAT(services.journal(), ElementsAre("search", "front 2", "main"));
    EXPECT_EQ(gHalvexisrunning, 1);
    services.runMainThread();
    EXPECT_THAT(services.journal(), ElementsAre("post Request"));
    EXPECT_EQ(services.observesLaunches(), std::pair(false, false));
    EXPECT_THAT(clock.sleeps, IsEmpty());
    EXPECT_THAT(tree.log.take(), IsEmpty());

    extra->HalvexLaunchThread(std::nullopt);
    services.runMainThread();
    EXPECT_THAT(services.journal(), ElementsAre("search", "front 2", "main"))
        << "nothing is posted without a name";
}

TEST_F(BackgroundHandOver, StartsAnAbsentApplicationAndWaitsForItsLaunchAnnouncement) {
    std::pair observedBefore{false, false};
    services.onOpen = [&] {
        observedBefore = services.observesLaunches();
        services.running = {"Halvex"};
    };
    clock.duringSleep = [&] {
        if (clock.sleeps.size() == 3)
            services.announce("Halvex");
    };
    extra->HalvexLaunchThread("Request");
    EXPECT_EQ(observedBefore, std::pair(true, true));
    EXPECT_THAT(services.journal(), ElementsAre("search", "open " + kApplication, "search",
                                                "front 1", "main, waiting", "post Request"));
    EXPECT_THAT(clock.sleeps, ElementsAre(250'000, 250'000, 250'000));
    EXPECT_EQ(services.observesLaunches(), std::pair(false, false));
    EXPECT_THAT(tree.log.take(), IsEmpty());
}

TEST_F(BackgroundHandOver, LogsTheLaunchOnFailureOrWhenVerboseAndPostsEvenAfterATimeout) {
    const struct {
        bool opens;
        std::int32_t debug;
    } cases[] = {{false, 0}, {true, 1}, {false, 2}};
    for (const auto& [opens, debug] : cases) {
        services.opens = opens;
        myDebug = debug;
        gHalvexisrunning = 1;
        clock.sleeps.clear();
        extra->HalvexLaunchThread("Request");
        EXPECT_THAT(services.journal(),
                    ElementsAre("search", "open " + kApplication, "main, waiting", "post Request"));
        EXPECT_EQ(clock.sleeps, std::vector<std::uint64_t>(200, 250'000));
        EXPECT_THAT(tree.log.take(), ElementsAre(kLaunching + kApplication));
        EXPECT_EQ(gHalvexisrunning, 0);
        EXPECT_EQ(services.observesLaunches(), std::pair(true, true));
    }
    services.announce("Halvex");
    EXPECT_EQ(gHalvexisrunning, 1) << "launches are observed after the timeout";
    EXPECT_EQ(services.observesLaunches(), std::pair(false, false));
}

TEST_F(BackgroundHandOver, OpensNothingIfThereIsNoPane) {
    pane.reset();
    extra->HalvexLaunchThread(std::nullopt);
    EXPECT_THAT(services.journal(), ElementsAre("search"));
    EXPECT_THAT(tree.log.take(), Contains(kLaunching + "(null)"));
}

TEST_F(BackgroundHandOver, IgnoresOtherLaunchesUnlessTheApplicationIsFoundRunning) {
    services.opens = false;
    extra->HalvexLaunchThread(std::nullopt);
    for (const char* other : {"Halvex 2", "halvex", "", "Editor"}) {
        services.announce(other);
        EXPECT_EQ(gHalvexisrunning, 0) << other;
    }
    extra->HalvexLaunched({.name = kDidLaunchApplication, .object = {}, .userInfo = {}});
    EXPECT_EQ(gHalvexisrunning, 0);
    EXPECT_EQ(services.observesLaunches(), std::pair(true, true));
    services.running = {"Halvex"};
    services.announce("Editor");
    EXPECT_EQ(gHalvexisrunning, 1);
    EXPECT_EQ(services.observesLaunches(), std::pair(false, false));
}

TEST_F(BackgroundHandOver, ObservesLaunchesAnnouncedOnTheWorkspacesCenter) {
    services.onOpen = [] { announceLaunch("Halvex"); };
    extra->HalvexLaunchThread("Request");
    EXPECT_THAT(clock.sleeps, IsEmpty()) << "the name is read under hxNSApplicationName";
}

TEST_F(BackgroundHandOver, StopsObservingLaunchesWhenTheItemIsDestroyed) {
    services.opens = false;
    extra->HalvexLaunchThread(std::nullopt);
    gHalvexisrunning = 0;
    extra.reset();
    services.announce("Halvex");
    EXPECT_EQ(gHalvexisrunning, 0);
    EXPECT_EQ(services.observesLaunches(), std::pair(false, false));
}

TEST_F(BackgroundHandOver, KeepsTheItemAliveAndDestroysItOnTheMainThread) {
    std::atomic<bool> sleeping = false;
    std::atomic<bool> awake = false;
    clock.duringSleep = [&] {
        sleeping = true;
        while (!awake)
            std::this_thread::yield();
    };
    const std::weak_ptr<HalvexMenuExtraBase> watched = extra;
    extra->OpenCalculator(nullptr);
    extra.reset();
    while (!sleeping)
        std::this_thread::yield();
    EXPECT_FALSE(watched.expired());
    services.announce("Halvex"); // concurrently with the worker thread reading the flag
    awake = true;
    std::vector<std::string> journal;
    while (journal.empty() || journal.back() != "main") {
        const auto more = services.journal();
        journal.insert(journal.end(), more.begin(), more.end());
        std::this_thread::yield();
    }
    EXPECT_THAT(journal, Contains("post HalvexShowCalculatorNotification"));
    EXPECT_FALSE(watched.expired()) << "the main thread still holds the item";
    while (!watched.expired()) {
        services.runMainThread(); // the journal is written before the work is queued
        std::this_thread::yield();
    }
}

} // namespace
