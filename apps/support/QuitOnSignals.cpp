#include "apps/support/QuitOnSignals.h"

#include "platform/Log.h"

#include <QCoreApplication>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace apps {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
constexpr itimerspec kPatience{.it_interval = {}, .it_value = {2, 500'000'000}};

std::array<int, 2> pipeEnds{-1, -1};
timer_t killTimer{};
std::atomic_flag isQuitting;
QuitOnSignals::Received receivedFunction = nullptr;

// A signal handler may call write() and timer_settime(), but not QCoreApplication::quit().
void handle(int signal, siginfo_t* info, void* context) {
    const int savedErrno = errno;
    const bool isOwn = info->si_code <= 0 && info->si_pid == getpid();
    if (receivedFunction)
        receivedFunction(isOwn ? QuitOnSignals::Sender::ThisProcess
                               : QuitOnSignals::Sender::AnotherProcess,
                         context);
    if (isQuitting.test_and_set())
        _exit(128 + signal);
    timer_settime(killTimer, 0, &kPatience, nullptr);
    [[maybe_unused]] const auto ignored = write(pipeEnds[1], "", 1);
    errno = savedErrno;
}

template <class Change>
void setAction(Change change) {
    struct sigaction action {};
    action.sa_flags = SA_RESTART;
    change(action);
    for (const int signal : kSignals) {
        struct sigaction current {};
        sigaction(signal, nullptr, &current);
        if (current.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

/// Creates a timer that kills this process.
bool createKillTimer() {
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGKILL;
    return timer_create(CLOCK_MONOTONIC, &event, &killTimer) == 0;
}

void quit() {
    char byte = 0;
    [[maybe_unused]] const auto ignored = read(pipeEnds[0], &byte, 1);
    QCoreApplication::quit();
}

} // namespace

QuitOnSignals::QuitOnSignals(Received received) {
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0 || !createKillTimer()) {
        platform::logLine("cannot handle SIGINT, SIGTERM and SIGHUP: %@", std::strerror(errno));
        return;
    }
    receivedFunction = received;
    watch_ = platform::mainThread().watchReadable(pipeEnds[0], quit);
    setAction([](struct sigaction& action) {
        action.sa_sigaction = handle;
        action.sa_flags |= SA_SIGINFO;
    });
}

QuitOnSignals::~QuitOnSignals() {
    setAction([](struct sigaction& action) { action.sa_handler = SIG_DFL; });
    watch_.reset();
    for (int& end : pipeEnds)
        close(end);
}

} // namespace apps
