// Restarts the menu bar when it crashes, exits without saying so, or hangs. Runs as long as a bar
// does and does nothing until something happens to it. Uses only the C library, and allocates no
// memory, because it stays in memory with every bar.

#include "apps/shared/HangSignal.h"
#include "apps/shared/JournalBlock.h"
#include "apps/shared/WatcherArguments.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kForever = -1;
constexpr int kTimeToRecordHang = 500; // milliseconds

/// A restart is delayed if the last ones were not this far apart: after an immediate exit, another
/// is likely.
constexpr std::int64_t kQuickExits = 10'000; // milliseconds
constexpr int kRestartsWithoutDelay = 5;
constexpr int kLongestDelay = 30; // seconds

struct Bar {
    int process;
    int handle; ///< a process handle, readable when the process has exited
    int journal;
    int hangTimer;
    char** command;
};

std::int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1000 + time.tv_nsec / 1'000'000;
}

bool hasExited(const Bar& bar, int timeout) {
    pollfd process{bar.handle, POLLIN, 0};
    return poll(&process, 1, timeout) > 0;
}

/// Returns a number in /proc/PROCESS/status, or the first character of a word.
long statusValue(int process, const char* key) {
    std::array<char, 64> path{};
    std::snprintf(path.data(), path.size(), "/proc/%d/status", process);
    const int file = open(path.data(), O_RDONLY | O_CLOEXEC);
    std::array<char, 4096> text{};
    const ssize_t size = file < 0 ? 0 : read(file, text.data(), text.size() - 1);
    if (file >= 0)
        close(file);
    const char* found = size > 0 ? std::strstr(text.data(), key) : nullptr;
    if (!found)
        return 0;
    found += std::strlen(key);
    const bool isNumber = *found >= '0' && *found <= '9';
    return isNumber ? std::strtol(found, nullptr, 10) : *found;
}

bool isStopped(const Bar& bar) {
    const long state = statusValue(bar.process, "State:\t");
    return state == 'T' || state == 't';
}

bool isDebugged(const Bar& bar) {
    return statusValue(bar.process, "TracerPid:\t") != 0;
}

/// Ends a bar whose hang timer has expired. The bar first gets the chance to record which item it
/// was running.
void handleHang(const Bar& bar) {
    std::uint64_t expirations = 0;
    if (read(bar.hangTimer, &expirations, sizeof expirations) < 0)
        return; // the bar has restarted the timer
    if (isStopped(bar))
        return; // restarts the timer when it continues
    if (isDebugged(bar)) {
        const itimerspec later{.it_interval = {}, .it_value = {5, 0}};
        timerfd_settime(bar.hangTimer, 0, &later, nullptr);
        return;
    }
    std::fprintf(stderr, "halvex-menubar-watcher: the menu bar does not respond: restarting it\n");
    syscall(SYS_tgkill, bar.process, bar.process, apps::kHangSignal);
    if (!hasExited(bar, kTimeToRecordHang))
        kill(bar.process, SIGKILL);
}

void waitForExit(const Bar& bar) {
    std::array<pollfd, 2> events{{{bar.handle, POLLIN, 0}, {bar.hangTimer, POLLIN, 0}}};
    do {
        if (poll(events.data(), events.size(), kForever) > 0 && events[1].revents != 0)
            handleHang(bar);
    } while (events[0].revents == 0 && !hasExited(bar, 0));
    waitpid(bar.process, nullptr, WNOHANG); // if it is a child
}

/// Returns whether the bar ended while it was running. A bar that has not opened the journal never
/// ran, for example because another one is running or the display is gone.
bool shouldRestart(const Bar& bar) {
    apps::JournalBlock block;
    return pread(bar.journal, &block, sizeof block, 0) == sizeof block &&
           block.processId == bar.process && block.state == apps::JournalBlock::State::Running;
}

/// Waits before a restart that follows too many others. Doubles the time with each.
void delayRestart() {
    static int quickExits = 0;
    static std::int64_t lastExit = 0;
    const std::int64_t time = now();
    quickExits = time - lastExit < kQuickExits ? quickExits + 1 : 0;
    lastExit = time;
    int delay = 0;
    for (int i = kRestartsWithoutDelay; i < quickExits && delay < kLongestDelay; ++i)
        delay = delay == 0 ? 1 : 2 * delay;
    if (delay > 0)
        std::fprintf(stderr,
                     "halvex-menubar-watcher: the menu bar exits repeatedly: "
                     "restarting it in %d s\n",
                     delay);
    sleep(static_cast<unsigned>(delay));
    lastExit += delay * 1000;
}

constexpr std::array kIgnoredSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
sigset_t notIgnoredBefore;

/// The bar starts this program with all signals blocked.
void ignoreSignals() {
    sigemptyset(&notIgnoredBefore);
    for (const int signal : kIgnoredSignals)
        if (std::signal(signal, SIG_IGN) != SIG_IGN)
            sigaddset(&notIgnoredBefore, signal);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Starts the bar. Returns whether that succeeded.
bool start(Bar& bar) {
    std::array<char, 64> inheritance{};
    std::snprintf(inheritance.data(), inheritance.size(), "%d %d %d", getpid(), bar.journal,
                  bar.hangTimer);
    setenv(apps::kWatcherVariable, inheritance.data(), 1);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setsigdefault(&attributes, &notIgnoredBefore);
    close(bar.handle);
    const int error =
        posix_spawn(&bar.process, bar.command[0], nullptr, &attributes, bar.command, environ);
    if (error != 0) {
        std::fprintf(stderr, "halvex-menubar-watcher: cannot start %s: %s\n", bar.command[0],
                     std::strerror(error));
        return false;
    }
    bar.handle = static_cast<int>(syscall(SYS_pidfd_open, bar.process, 0));
    return bar.handle >= 0;
}

} // namespace

int main(int argc, char** argv) {
    constexpr int kFixedArguments = 5;
    if (argc <= kFixedArguments) {
        std::fprintf(stderr, "halvex-menubar-watcher is started by halvex-menubar\n");
        return 2;
    }
    Bar bar{std::atoi(argv[1]), std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4]),
            argv + kFixedArguments};
    fcntl(bar.handle, F_SETFD, FD_CLOEXEC);
    ignoreSignals();
    for (;;) {
        waitForExit(bar);
        if (!shouldRestart(bar))
            return 0;
        delayRestart();
        if (!start(bar))
            return 1;
    }
}
