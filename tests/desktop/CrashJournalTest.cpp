#include "apps/menubar/CrashJournal.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <limits>

using apps::CrashJournal;
using apps::JournalBlock;

namespace {

TEST(CrashJournal, CountsTheExitsOfTheLastTenSeconds) {
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
        const test::TemporaryFolder folder;
        CrashJournal journal;
        journal.open(
            folder.write("journal", {reinterpret_cast<const char*>(&block), sizeof block}));
        EXPECT_EQ(journal.exitsRepeatedly(), isRepeated) << exitTimes.back();
    }
}

} // namespace
