#include "tests/desktop/support/FakeNotificationServer.h"
#include "tests/desktop/support/TestBundle.h"
#include "tests/desktop/support/WatchedBar.h"
#include "tests/desktop/support/XServer.h"

#include <QThread>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/ptrace.h>
#include <sys/wait.h>

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Loads an item, makes it fail by a click, and waits for that.
void failWhenClicked(const WatchedBar& bar, const TestBundle& extra, const std::string& failure) {
    extra.replaceInInfo(kFaultless, "click: " + failure);
    ASSERT_TRUE(bar.loads(extra.path, kFaultyExtra)) << bar.log();
    ASSERT_TRUE(eventually([&] {
        return contents(bar.listFile()).find(kFaultyExtra) != std::string::npos;
    })) << "it is stored some time after it was loaded";
    bar.post("Click", {kFaultyExtra, 0U, 1, 0});
    ASSERT_TRUE(eventually([&] { return !bar.failureTimes().empty(); })) << bar.log();
}

std::int64_t millisecondsOf(const std::function<void()>& action) {
    const auto start = now();
    action();
    return now() - start;
}

TEST(Watcher, DoesNotRestartABarThatQuits) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        WatchedBar bar;
        const TestBundle extra(bar);
        ASSERT_TRUE(bar.loads(extra.path, kFaultyExtra));
        EXPECT_TRUE(bar.endsForGood([&] { bar.send(signal); })) << bar.log();
        EXPECT_EQ(bar.waitForExit(), 0);
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kFaultyExtra)) << "none is blamed";
    }
    WatchedBar bar;
    EXPECT_TRUE(bar.endsForGood([&] { bar.bus->kill(); })) << bar.log();
    std::optional<XServer> x(std::in_place);
    WatchedBar barOnX({}, x->settings());
    const TestBundle extra(barOnX);
    ASSERT_TRUE(barOnX.loads(extra.path, kFaultyExtra));
    EXPECT_TRUE(barOnX.endsForGood([&] { x.reset(); })) << barOnX.log();
    EXPECT_THAT(barOnX.disabled(), IsEmpty());
}

TEST(Watcher, DoesNotRestartAHungBarThatIsToldToQuit) {
    struct Case {
        int count, status, limit;
    };
    for (const Case& row : {Case{1, -1, 3000}, Case{2, 128 + SIGTERM, 500}}) {
        WatchedBar bar;
        const TestBundle extra(bar);
        failWhenClicked(bar, extra, "endless wait");
        const auto time = millisecondsOf([&] {
            EXPECT_TRUE(bar.endsForGood([&] {
                for (int i = 0; i < row.count; ++i) {
                    bar.send(SIGTERM);
                    QThread::msleep(50); // two pending signals would be one
                }
            })) << bar.log();
        });
        EXPECT_LE(time, row.limit * kSlowness);
        EXPECT_EQ(bar.waitForExit(), row.status);
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kFaultyExtra)) << "none is blamed";
    }
}

TEST(Watcher, RestartsABarThatIsKilledAndAtTheThirdTimeWithoutThirdPartyItems) {
    WatchedBar bar({"--hang-limit", "0"});
    const TestBundle extra(bar);
    failWhenClicked(bar, extra, "endless wait");
    for (const int signal : {SIGABRT, SIGSEGV, SIGKILL}) {
        EXPECT_EQ(bar.log().find("without third-party"), std::string::npos);
        const pid_t former = bar.process();
        bar.send(signal);
        EXPECT_NE(bar.waitForItems({kOwnClock}, former), 0) << bar.log();
        EXPECT_EQ(bar.reference(kFaultyExtra) != 0, signal != SIGKILL) << bar.log();
        EXPECT_THAT(bar.disabled(), IsEmpty()) << "sent by another process";
        if (signal == SIGABRT)
            bar.post("Click", {kFaultyExtra, 0U, 1, 0});
        EXPECT_TRUE(eventually([&] { return signal != SIGABRT || bar.failureTimes().size() > 1; }));
    }
    EXPECT_THAT(bar.log(), HasSubstr("exited three times within ten seconds for an unknown reason: "
                                     "starting without third-party menu extras"));
    EXPECT_THAT(contents(bar.listFile()), HasSubstr(kFaultyExtra)) << "it stays in the list";
}

TEST(Watcher, WaitsFiveSecondsUnlessToldOtherwise) {
    WatchedBar bar;
    const TestBundle extra(bar);
    const pid_t former = bar.process();
    failWhenClicked(bar, extra, "busy loop");
    QThread::msleep(4500);
    EXPECT_EQ(bar.process(), former);
    EXPECT_NE(bar.waitForItems({kOwnClock}, former), 0) << bar.log();
    EXPECT_LE(now() - bar.failureTimes().front(), 5000 + 1000 * kSlowness);
}

TEST(Watcher, DoesNotTakeAStoppedOrDebuggedBarOrAnOpenMenuForAHang) {
    WatchedBar bar({"--hang-limit", "1"});
    const TestBundle extra(bar);
    const pid_t process = bar.process();
    bar.click(kOwnClock);
    EXPECT_GT(bar.picture().height(), 22) << "its menu is open";
    failWhenClicked(bar, extra, "short wait");
    bar.send(SIGSTOP);
    QThread::msleep(1500);
    bar.send(SIGCONT);
    EXPECT_EQ(bar.waitForItems({kOwnClock, kFaultyExtra}), process) << bar.log();
    bar.click(kOwnClock);
    QThread::msleep(1500);
    EXPECT_EQ(bar.waitForItems({kOwnClock, kFaultyExtra}), process) << "a menu was open";

    bar.remove(kFaultyExtra);
    extra.replaceInInfo("click: short wait", kFaultless);
    failWhenClicked(bar, extra, "endless wait");
    if (ptrace(PTRACE_SEIZE, process, nullptr, nullptr) != 0)
        GTEST_SKIP() << "this system permits no debugger";
    QThread::msleep(1800);
    EXPECT_EQ(bar.process(), process) << bar.log();
    ptrace(PTRACE_INTERRUPT, process, nullptr, nullptr);
    waitpid(process, nullptr, __WALL);
    ptrace(PTRACE_DETACH, process, nullptr, nullptr);
    bar.send(SIGKILL);
}

TEST(Watcher, IsStartedAgainWhenItIsKilled) {
    WatchedBar bar;
    for (const bool isItsChild : {false, true}) {
        QThread::msleep(1100); // a watcher that exits sooner is started again later
        pid_t watcher = bar.waitForWatcher();
        for (const char* time : {"the first time", "soon after it was started"}) {
            ASSERT_NE(watcher, 0);
            kill(watcher, SIGKILL);
            watcher = bar.waitForWatcher(watcher);
            EXPECT_NE(watcher, 0) << time << bar.log();
        }
        const pid_t former = bar.process();
        bar.send(SIGKILL);
        EXPECT_NE(bar.waitForItems({kOwnClock}, former), 0) << isItsChild << bar.log();
    }
}

TEST(Watcher, IsAlsoStartedIfTheBarIsEmpty) {
    WatchedBar bar;
    EXPECT_EQ(bar.remove(kOwnClock), 0);
    EXPECT_TRUE(bar.endsForGood([&] { bar.stop(); }));
    bar.start();
    EXPECT_THAT(bar.identifiers(), IsEmpty());
    EXPECT_NE(bar.waitForWatcher(), 0) << bar.log();
}

/// A full disk, mounted at a folder.
class FullDisk {
  public:
    explicit FullDisk(const fs::path& folder)
        : folder_(folder), isMounted_(mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=4k") == 0) {
        replaceContents(folder / "filler", std::string(4096, 'x'));
    }
    ~FullDisk() {
        if (isMounted_)
            umount2(folder_.c_str(), MNT_DETACH);
    }
    bool isMounted() const { return isMounted_; }

  private:
    const fs::path folder_;
    const bool isMounted_;
};

TEST(Journal, BlamesAnItemEvenIfItsFileCannotBeUsed) {
    enum class Obstacle { FullDisk, AnotherBar, NoFolder };
    for (const auto obstacle : {Obstacle::AnotherBar, Obstacle::NoFolder, Obstacle::FullDisk}) {
        SCOPED_TRACE(static_cast<int>(obstacle));
        WatchedBar bar;
        const TestBundle extra(bar, "click: abort");
        EXPECT_TRUE(bar.endsForGood([&] { bar.stop(); }));
        std::optional<FullDisk> disk;
        int file = -1;
        if (obstacle == Obstacle::FullDisk) {
            disk.emplace(bar.stateFolder());
            if (!disk->isMounted())
                GTEST_SKIP() << "not tested on a full disk: this user may not mount one";
        } else if (obstacle == Obstacle::AnotherBar) {
            file = open((bar.stateFolder() / "Menu Bar Step").c_str(), O_RDWR | O_CLOEXEC);
            ASSERT_EQ(flock(file, LOCK_EX | LOCK_NB), 0);
        } else {
            fs::remove_all(bar.stateFolder());
            replaceContents(bar.stateFolder(), "in the way");
        }
        bar.start({QString::fromStdString(extra.path)});
        EXPECT_TRUE(bar.logs("cannot record in")) << bar.log();
        const pid_t former = bar.process();
        bar.post("Click", {kFaultyExtra, 0U, 1, 0});
        EXPECT_NE(bar.waitForItems({kOwnClock}, former), 0) << bar.log();
        EXPECT_TRUE(bar.logs("test.faulty at " + extra.path.string() + " is disabled"));
        EXPECT_EQ(bar.reference(kFaultyExtra), 0U);
        close(file);
    }
}

TEST(Watcher, LetsTheBarTellTheUserWhichItemWasTurnedOff) {
    struct Case {
        const char* failure;
        const char* reason;
        const char* logged;
    };
    for (const auto& [failure, reason, logged] :
         {Case{"abort", "It crashed the menu bar.", "it crashed the menu bar (click)"},
          Case{"exit", "It ended the menu bar.", "it ended the menu bar (click)"},
          Case{"endless wait", "It stopped responding.", "it stopped responding (click)"}}) {
        WatchedBar bar({"--hang-limit", "1"});
        FakeNotificationServer server(*bar.bus, {"body", "actions"});
        const TestBundle extra(bar);
        failWhenClicked(bar, extra, failure);
        ASSERT_TRUE(server.hasCalls(1)) << bar.log();
        EXPECT_EQ(server.calls.front(),
                  std::string("0 dialog-warning|FaultyExtra was turned off|") + reason +
                      "|turn-on,Turn on again");
        EXPECT_TRUE(bar.logs(logged)) << bar.log();
        EXPECT_EQ(bar.reference(kFaultyExtra), 0U);
        server.emitSignal("ActionInvoked", {1U, "turn-on"});
        EXPECT_TRUE(bar.hasLoaded(kFaultyExtra)) << bar.log();
        EXPECT_THAT(bar.disabled(), IsEmpty());
    }
}

} // namespace
