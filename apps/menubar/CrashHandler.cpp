#include "apps/menubar/CrashHandler.h"

#include "apps/menubar/AlternateStack.h"
#include "apps/menubar/CrashJournal.h"
#include "apps/menubar/HangTimer.h"
#include "apps/shared/HangSignal.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <ucontext.h>
#include <unistd.h>

namespace apps {
namespace {

constexpr std::array kFatalSignals{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS};

struct State {
    CrashJournal& journal;
    HangTimer& hangTimer;
    std::array<struct sigaction, kFatalSignals.size()> previousActions{};
};
State* state = nullptr;

void handleFatalSignal(int signal, siginfo_t* info, void* context) {
    const bool isFault = info->si_code > 0; // otherwise a process sent the signal
    if (isFault || info->si_pid == getpid())
        state->journal.recordFailure(Failure::Crash, interruptedAddress(context));
    for (std::size_t i = 0; i < kFatalSignals.size(); ++i)
        sigaction(kFatalSignals[i], &state->previousActions[i], nullptr);
    // A fault recurs when the handler returns. A signal that was sent must be raised again.
    if (!isFault)
        raise(signal);
}

void handleHang(int, siginfo_t*, void* context) {
    state->journal.recordFailure(Failure::Hang, interruptedAddress(context));
    _exit(EXIT_FAILURE);
}

void handleContinuation(int, siginfo_t*, void*) {
    const int savedErrno = errno;
    state->hangTimer.restart();
    errno = savedErrno;
}

void setHandler(int signal, void (*handler)(int, siginfo_t*, void*),
                struct sigaction* previous = nullptr) {
    struct sigaction action {};
    action.sa_sigaction = handler;
    action.sa_flags = SA_ONSTACK | SA_SIGINFO | SA_RESTART;
    sigaction(signal, &action, previous);
}

} // namespace

CrashHandler::CrashHandler(CrashJournal& journal, HangTimer& hangTimer) {
    static const AlternateStack mainStack;
    static State onlyState{journal, hangTimer};
    state = &onlyState;
    for (std::size_t i = 0; i < kFatalSignals.size(); ++i)
        setHandler(kFatalSignals[i], handleFatalSignal, &state->previousActions[i]);
    setHandler(kHangSignal, handleHang);
    setHandler(SIGCONT, handleContinuation);
}

std::uintptr_t interruptedAddress([[maybe_unused]] const void* context) {
#if defined(__x86_64__)
    const auto address = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP];
    return static_cast<std::uintptr_t>(address);
#elif defined(__aarch64__)
    return static_cast<const ucontext_t*>(context)->uc_mcontext.pc;
#else
    return 0;
#endif
}

} // namespace apps
