#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/TestBundle.h"
#include "tests/desktop/support/WatchedBar.h"
#include "tests/desktop/support/XServer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <span>

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// What makes the item reach the place where it fails.
enum class Trigger { Start, Add, Click, ClickAndRemove, ChooseAction, Tick, ChangeFile, Remove };

struct Place {
    const char* name;
    const char* step; ///< as recorded
    Trigger trigger;
};
void PrintTo(const Place& place, std::ostream* stream) {
    *stream << place.name;
}
constexpr Place kPlaces[] = {
    {"static constructor", "loading", Trigger::Add},
    {"initialiser", "loading", Trigger::Add},
    {"initialiser at start", "loading", Trigger::Start},
    {"first drawing", "drawing", Trigger::Add},
    {"later drawing", "drawing", Trigger::Click},
    {"click", "click", Trigger::Click},
    {"menu", "menu", Trigger::Click},
    {"action", "its own code", Trigger::ChooseAction},
    {"timer", "its own code", Trigger::Tick},
    {"file watch", "its own code", Trigger::ChangeFile},
    {"thread", "its own thread", Trigger::Click},
    {"thread of unloaded code", "its own thread", Trigger::ClickAndRemove},
    {"willUnload", "unloading", Trigger::Remove},
    {"destructor", "unloading", Trigger::Remove},
    {"static destructor", "unloading", Trigger::Remove},
};

enum class Kind { Exception, CrashOrExit, Hang };

struct Failure {
    const char* name;
    Kind kind;
};
constexpr Failure kFailures[] = {
    {"exception", Kind::Exception},
    {"SIGSEGV", Kind::CrashOrExit},
    {"stack overflow", Kind::CrashOrExit},
    {"abort", Kind::CrashOrExit},
    {"exit", Kind::CrashOrExit},
    {"_exit", Kind::CrashOrExit},
    {"kill SIGKILL", Kind::CrashOrExit},
    {"raise SIGKILL", Kind::CrashOrExit},
    {"kill SIGTERM", Kind::CrashOrExit},
    {"raise SIGTERM", Kind::CrashOrExit},
    {"endless wait", Kind::Hang},
#if !defined(__SANITIZE_THREAD__) // delivers no signal to a busy loop, so the bar is killed
    {"busy loop", Kind::Hang},
#endif
};
constexpr Failure kUnloading[] = {{"return", Kind::CrashOrExit}};

constexpr int kHangLimit = 1; // second
constexpr std::int64_t kTimeToRestart = 1000 * kSlowness;

/// Exceptions are caught unless they leave a function that C++ does not permit to throw. Threads
/// other than the main thread may take as long as they want.
bool endsTheBar(const std::string& place, Kind kind) {
    const bool mayThrow = !place.ends_with("structor"); // of the item or of a static object
    return (kind != Kind::Exception || !mayThrow) && (kind != Kind::Hang || place != "thread");
}

/// A bar with three items, one of which fails.
struct Row {
    Row(const Place& failingPlace, const Failure& itsFailure)
        : place(failingPlace), failure(itsFailure) {
        if (place.trigger == Trigger::ChooseAction)
            x.emplace();
        bar.emplace(options, x ? x->settings() : Settings());
        extra.emplace(*bar, place.name + std::string(": ") + failure.name);
        former = bar->process();
    }

    void trigger();
    void verify() const;
    void verifyRestart() const;
    void print(const std::string& outcome) const {
        std::cout << std::left << std::setw(25) << place.name << std::setw(16) << failure.name
                  << outcome << '\n';
    }

    const Place& place;
    const Failure& failure;
    const QStringList options{"--hang-limit", QString::number(kHangLimit), HALVEX_TIME_MENU};
    std::optional<XServer> x;
    std::optional<WatchedBar> bar;
    std::optional<TestBundle> extra;
    pid_t former = 0;
};

void Row::trigger() {
    if (place.trigger == Trigger::Start) {
        bar->stop();
        bar->launch(options + QStringList(QString::fromStdString(extra->path)));
        former = static_cast<pid_t>(bar->processId());
        return;
    }
    bar->add(extra->path);
    if (place.trigger == Trigger::Add)
        return;
    EXPECT_TRUE(bar->hasLoaded(kFaultyExtra)) << bar->log();
    if (place.trigger == Trigger::ChangeFile)
        replaceContents(bar->home() / "watched", "changed");
    else if (place.trigger != Trigger::Tick && place.trigger != Trigger::Remove)
        bar->post("Click", {kFaultyExtra, 0U, 1, 0});
    if (place.trigger == Trigger::ChooseAction) {
        EXPECT_TRUE(eventually([&] { return bar->picture().height() > 22; })) << "no menu";
        x->act({"key", "Down", "Return"});
    }
    if (place.trigger == Trigger::Remove || place.trigger == Trigger::ClickAndRemove)
        bar->post("RemoveMenuExtra", {bar->reference(kFaultyExtra), 0});
}

void Row::verify() const {
    SCOPED_TRACE(failure.name);
    ASSERT_TRUE(eventually([&] { return !bar->failureTimes().empty(); })) << bar->log();
    if (endsTheBar(place.name, failure.kind)) {
        verifyRestart();
        return;
    }
    bar->add(extra->path, -1); // another attempt
    EXPECT_EQ(bar->waitForItems({kOwnClock, HalvexMenuID}), former) << bar->log();
    if (failure.kind == Kind::Exception) {
        EXPECT_THAT(bar->log(), HasSubstr("test.faulty raised an exception"));
    }
    EXPECT_EQ(bar->log().find("is disabled"), std::string::npos);
    print("no restart");
}

void Row::verifyRestart() const {
    const pid_t next = bar->waitForItems({kOwnClock, HalvexMenuID}, former);
    const auto time = now() - bar->failureTimes().front();
    const auto hangLimit = failure.kind == Kind::Hang ? 1000 * kHangLimit : 0;
    EXPECT_NE(next, 0) << bar->log();
    EXPECT_LE(time, hangLimit + kTimeToRestart);
    EXPECT_THAT(bar->log(),
                HasSubstr("menu extra test.faulty at " + extra->path.string() + " is disabled"));
    EXPECT_THAT(bar->disabled(), ElementsAre(std::pair(kFaultyExtra, place.step)));
    EXPECT_EQ(bar->failureTimes().size(), 1U) << "it is not loaded again";
    print("back after " + std::to_string(time) + " ms, disabled: " + place.step);
}

class FaultyItem : public testing::TestWithParam<Place> {};

TEST_P(FaultyItem, IsDisabledAndTheOthersAreBackInTime) {
    const bool unloads = GetParam().trigger == Trigger::ClickAndRemove;
    const auto failures = unloads ? std::span<const Failure>(kUnloading) : kFailures;
    std::vector<std::unique_ptr<Row>> hanging;
    for (const Failure& failure : failures) {
        auto row = std::make_unique<Row>(GetParam(), failure);
        if (failure.kind == Kind::Hang) {
            hanging.push_back(std::move(row)); // verified together: each takes a second
            continue;
        }
        row->trigger();
        row->verify();
    }
    for (const auto& row : hanging)
        row->trigger();
    for (const auto& row : hanging)
        row->verify();
}

INSTANTIATE_TEST_SUITE_P(At, FaultyItem, testing::ValuesIn(kPlaces), [](const auto& place) {
    std::string name = place.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

} // namespace
