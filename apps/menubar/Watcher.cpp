#include "apps/menubar/Watcher.h"

#include "apps/menubar/CrashJournal.h"
#include "apps/shared/WatcherArguments.h"
#include "platform/Log.h"
#include "platform/MainThread.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

using platform::logLine;

namespace apps {
namespace {

// A watcher that exits sooner is started again after this time, and not at all after some attempts.
constexpr std::chrono::seconds kShortestRun{1};
constexpr int kMaximumShortRuns = 5;

std::string watcherProgram() {
    const QDir programFolder(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programFolder.filePath("../" HALVEX_WATCHER)).toStdString();
}

int handleOf(int process) {
    return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

/// Starts @p command, which inherits @p files and starts with all signals blocked. Returns the
/// process identifier, or -1 with errno. posix_spawn would take two system calls per signal.
int spawn(const std::vector<std::string>& command, const std::array<int, 3>& files) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    sigset_t all, previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous); // the child shares this process's memory
    volatile int error = 0;
    const pid_t process = vfork();
    if (process == 0) {
        for (const int file : files)
            fcntl(file, F_SETFD, 0); // -1 is ignored
        execv(arguments.front(), arguments.data());
        error = errno;
        _exit(EXIT_FAILURE);
    }
    if (process < 0)
        error = errno;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return error == 0 ? process : -1;
}

} // namespace

Watcher::Inheritance Watcher::takeInheritance() {
    Inheritance result;
    const char* value = std::getenv(kWatcherVariable);
    const bool isComplete = value && std::sscanf(value, "%d %d %d", &result.process,
                                                 &result.journal, &result.hangTimer) == 3;
    unsetenv(kWatcherVariable);
    if (!isComplete || result.process != getppid())
        return {};
    for (const int file : {result.journal, result.hangTimer})
        fcntl(file, F_SETFD, FD_CLOEXEC);
    return result;
}

Watcher::Watcher(const Inheritance& inheritance, std::vector<std::string> command)
    : command_(std::move(command)), process_(inheritance.process) {}

void Watcher::start(const CrashJournal& journal, int hangTimer) {
    journal_ = journal.file();
    hangTimer_ = hangTimer;
    if (watch_)
        return;
    if (process_ < 0)
        restart();
    else
        follow(process_);
}

void Watcher::restart() {
    const int bar = handleOf(getpid());
    std::vector<std::string> command{watcherProgram()};
    for (const int number : {getpid(), bar, journal_, hangTimer_})
        command.push_back(std::to_string(number));
    command.insert(command.end(), command_.begin(), command_.end());
    startTime_ = std::chrono::steady_clock::now();
    process_ = spawn(command, {bar, journal_, hangTimer_});
    if (process_ < 0)
        logLine("the menu bar will not be restarted if it crashes: cannot start %@: %@",
                command.front(), std::strerror(errno));
    else
        follow(process_);
    close(bar);
}

void Watcher::follow(int process) {
    processHandle_ = handleOf(process);
    if (processHandle_ < 0)
        return;
    watch_ = platform::mainThread().watchReadable(processHandle_, [this] {
        watch_.reset();
        close(std::exchange(processHandle_, -1));
        waitpid(std::exchange(process_, -1), nullptr, WNOHANG);
        const auto runTime = std::chrono::steady_clock::now() - startTime_;
        shortRuns_ = runTime > kShortestRun ? 0 : shortRuns_ + 1;
        if (shortRuns_ == 0)
            restart();
        else if (shortRuns_ <= kMaximumShortRuns)
            QTimer::singleShot(kShortestRun, qApp, [this] { restart(); });
        else
            logLine("the menu bar will not be restarted if it crashes: its watcher keeps exiting");
    });
}

} // namespace apps
