#include "apps/support/QuitOnSignals.h"

#include "platform/Log.h"

#include <QCoreApplication>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace apps {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};
std::array<int, 2> pipeEnds{-1, -1};

// A signal handler may call write(), but not QCoreApplication::quit().
void wakeMainLoop(int) {
    const int savedErrno = errno;
    [[maybe_unused]] const auto ignored = write(pipeEnds[1], "", 1);
    errno = savedErrno;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        struct sigaction current {};
        sigaction(signal, nullptr, &current);
        if (current.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

void quit() {
    char byte = 0;
    [[maybe_unused]] const auto ignored = read(pipeEnds[0], &byte, 1);
    QCoreApplication::quit();
}

} // namespace

QuitOnSignals::QuitOnSignals() {
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        platform::logLine("cannot handle SIGINT, SIGTERM and SIGHUP: pipe: %@",
                          std::strerror(errno));
        return;
    }
    watch_ = platform::mainThread().watchReadable(pipeEnds[0], quit);
    setHandler(wakeMainLoop);
}

QuitOnSignals::~QuitOnSignals() {
    setHandler(SIG_DFL);
    watch_.reset();
    for (int& end : pipeEnds)
        close(end);
}

} // namespace apps
