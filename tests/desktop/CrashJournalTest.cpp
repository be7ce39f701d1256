#include "apps/menubar/CrashJournal.h"

#include "platform/runtime/Guard.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <limits>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace apps;
using namespace std::string_literals;

namespace {

class CrashJournalTest : public testing::Test {
  protected:
    /// Opens the journal as the next bar does.
    CrashJournal& open() {
        journal.reset(); // unlocks the file
        journal.emplace();
        journal->open(file);
        for (const char* identifier : {"a", "b"})
            journal->add({identifier, std::string("/") + identifier, 7, "1.0"});
        journal->setCode("a", {0x1000, 0x2000});
        journal->setCode("b", {0x2000, 0x3000});
        return *journal;
    }
    /// Returns the item and the step that the next bar reads, or an empty string.
    std::string note() {
        const auto last = open().takeLastNote();
        EXPECT_FALSE(journal->takeLastNote()) << "it is read once";
        return last ? last->item.identifier + ": " + last->step : "";
    }

    const test::TemporaryFolder folder;
    const std::string file = folder.file("journal");
    std::optional<CrashJournal> journal;
};

TEST_F(CrashJournalTest, BlamesTheItemWhoseCodeRunsWithItsOwnStepOnly) {
    struct Case {
        std::uintptr_t address;
        const char* owner;
        const char* expected;
    };
    for (const auto& [address, owner, expected] :
         {Case{0x1000, "b", "a: its own code"}, // called by the other item, but not for a step
          Case{0x1fff, "", "a: its own code"}, Case{0x2000, "a", "b: menu"},
          Case{0x3000, "b", "b: menu"}, Case{0xfff, "a", "a: its own code"}, Case{0x3000, "", ""},
          Case{0, "unknown", ""}}) {
        open();
        const CrashJournal::Scope outer(*journal, "click", "a");
        const CrashJournal::Scope inner(*journal, "menu", "b");
        platform::runGuarded(owner, [&, &address = address, &expected = expected] {
            EXPECT_EQ(journal->recordFailure(Failure::Crash, address), *expected != '\0');
        });
        EXPECT_EQ(note(), expected) << address << owner;
        EXPECT_EQ(note(), "") << "it is cleared";
    }
}

TEST_F(CrashJournalTest, BlamesTheFirstItemThatFailsOnAnyThreadOfThisProcess) {
    open();
    const pid_t child = fork();
    if (child == 0)
        _exit(journal->recordFailure(Failure::Crash, 0x1000) ? 1 : 0);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "a child process is not the bar";

    const CrashJournal::Scope step(*journal, "click", "a");
    std::thread([this] {
        platform::runGuarded("a",
                             [this] { EXPECT_TRUE(journal->recordFailure(Failure::Crash, 0)); });
    }).join();
    EXPECT_FALSE(journal->recordFailure(Failure::Exit, 0x2000)) << "a consequence";
    EXPECT_EQ(note(), "a: its own thread");
}

TEST_F(CrashJournalTest, CountsOnlyExitsForUnknownReasons) {
    const auto repeats = [this] { return open().exitsRepeatedly(); };
    EXPECT_FALSE(repeats());
    EXPECT_FALSE(repeats());
    EXPECT_FALSE(repeats());
    journal->recordStop();
    EXPECT_FALSE(repeats());
    EXPECT_TRUE(journal->recordFailure(Failure::Exit, 0x1000));
    EXPECT_FALSE(repeats());
    EXPECT_TRUE(repeats()) << "the third exit";
    journal->recordStop();
    EXPECT_TRUE(repeats()) << "within ten seconds";
}

TEST_F(CrashJournalTest, CountsTheExitsOfTheLastTenSeconds) {
    using namespace std::chrono;
    using State = JournalBlock::State;
    const std::int64_t now =
        duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    constexpr std::int64_t kDamaged = std::numeric_limits<std::int64_t>::min();
    struct Row {
        State state;
        std::array<std::int64_t, 3> exitTimes;
        bool isRepeated;
    };
    for (const auto& [state, exitTimes, isRepeated] :
         {Row{State::Running, {now - 1000, now - 2000, now - 20'000}, true},
          Row{State::Stopping, {now - 1000, now - 2000, now - 20'000}, false},
          Row{State::Stopping, {now - 1000, now - 2000, now - 3000}, true},
          Row{State::Running, {now - 1000, now + 60'000, 0}, false}, // the clock was set back
          Row{State::Stopping, {now, now, kDamaged}, false}}) {
        JournalBlock block;
        block.magic = JournalBlock::kMagic;
        block.processId = 1;
        block.state = state;
        block.exitTimes = exitTimes;
        journal.reset();
        folder.write("journal", {reinterpret_cast<const char*>(&block), sizeof block});
        EXPECT_EQ(open().exitsRepeatedly(), isRepeated) << exitTimes.back();
    }
}

TEST_F(CrashJournalTest, IgnoresContentsThatItCannotRead) {
    open();
    EXPECT_TRUE(journal->recordFailure(Failure::Crash, 0x1000));
    const std::string valid = test::contents(file);
    const auto replaced = [&](std::size_t offset, std::size_t size, char byte) {
        return std::string(valid).replace(offset, size, size, byte);
    };
    const std::string item = valid.substr(0, offsetof(JournalBlock, item));
    for (const std::string& bytes :
         {std::string(), std::string(sizeof(JournalBlock), '\xff'), item + "a\0/"s,
          replaced(7, 1, '9'), // another version
          replaced(offsetof(JournalBlock, item), sizeof(JournalBlock::item), 'x'),
          item + std::string(sizeof(JournalBlock::item), '\0')}) {
        journal.reset();
        folder.write("journal", bytes);
        EXPECT_EQ(note(), "");
        EXPECT_TRUE(journal->recordFailure(Failure::Hang, 0x2000));
        EXPECT_EQ(note(), "b: its own code") << "it is usable again";
    }
    journal.reset();
    folder.write("journal",
                 replaced(offsetof(JournalBlock, step), sizeof(JournalBlock::step), 'x'));
    EXPECT_EQ(note(), "a: " + std::string(sizeof(JournalBlock::step) - 1, 'x'));
}

TEST(ItemCodeMap, FindsTheLatestItemAtAnAddress) {
    ItemCodeMap map;
    const auto dataAt = [&](std::uintptr_t address, const char* owner = "") {
        const auto* entry = map.find(address, owner);
        return entry ? entry->data : "";
    };
    map.add("a", "first");
    map.setCode("a", {10, 20});
    map.add("a", "second");
    EXPECT_EQ(dataAt(10), "first") << "its threads may still run";
    EXPECT_EQ(dataAt(20), "");
    EXPECT_EQ(dataAt(20, "a"), "second");
    map.setCode("a", {19, 30});
    EXPECT_EQ(dataAt(19), "second");
    EXPECT_EQ(dataAt(10), "") << "that code has been unloaded";
    map.add("b", "third");
    map.setCode("b", {30, 40});
    EXPECT_EQ(dataAt(29, "b"), "second");
    EXPECT_EQ(dataAt(30, "a"), "third");
    map.setCode("unknown", {0, 100});
    EXPECT_EQ(dataAt(30), "");
}

} // namespace
