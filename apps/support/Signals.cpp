#include "apps/support/Signals.h"

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

// A signal handler may do little more than write a byte.
void tellMainLoop(int) {
    const int before = errno;
    [[maybe_unused]] const auto ignored = write(pipeEnds[1], "", 1);
    errno = before;
}

/// But for those that whoever started the program has it ignore, as nohup does.
void handleSignals(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        struct sigaction before {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
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
        platform::logLine("no pipe for signals: %@", std::strerror(errno));
        return;
    }
    watch_ = platform::mainThread().watchReadable(pipeEnds[0], quit);
    handleSignals(tellMainLoop);
}

QuitOnSignals::~QuitOnSignals() {
    handleSignals(SIG_DFL);
    watch_.reset();
    for (int& end : pipeEnds)
        close(end);
}

} // namespace apps
