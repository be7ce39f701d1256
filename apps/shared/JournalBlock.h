#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

namespace apps {

/// How an item ended the menu bar.
enum class Failure : std::int32_t {
    None,
    Crash, ///< a fatal signal
    Exit,  ///< it called exit or a related function, or sent the process a signal that ends it
    Hang,  ///< it kept the main thread from dispatching events
};

/// The contents of the crash journal (see CrashJournal), which the menu bar writes and its watcher
/// reads: a block of fixed size that is overwritten in place, so that recording a failure needs no
/// space on the disk. In the byte order of the processor.
struct JournalBlock {
    static constexpr std::array<char, 8> kMagic{'H', 'x', 'B', 'a', 'r', ' ', '0', '1'};

    enum class State : std::int32_t {
        Running,
        Stopping, ///< the bar has left its main loop, and must not be started again
    };

    std::array<char, 8> magic{};
    std::int32_t processId = 0; ///< of the bar
    State state = State::Running;
    std::array<std::int64_t, 3> exitTimes{}; ///< of unexplained exits; ms since 1970, latest first
    Failure failure = Failure::None;
    std::array<char, 32> step{};   ///< what the item was doing; zero-terminated
    std::array<char, 8116> item{}; ///< the item that failed, see CrashJournal.cpp
};
static_assert(sizeof(JournalBlock) == 8192 && std::is_trivially_copyable_v<JournalBlock>);

} // namespace apps
