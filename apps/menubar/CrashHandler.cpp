#include "apps/menubar/CrashHandler.h"

#include <array>
#include <cstddef>
#include <utility>

namespace apps {
namespace {

constexpr std::array kSignals{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
std::array<struct sigaction, kSignals.size()> previousActions;
const std::function<void()>* currentFunction = nullptr;

void restorePreviousActions() {
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        sigaction(kSignals[i], &previousActions[i], nullptr);
}

} // namespace

CrashHandler::CrashHandler(std::function<void()> crashed) : crashed_(std::move(crashed)) {
    currentFunction = &crashed_;
    // The handler needs its own stack, because the crash may be a stack overflow.
    static std::array<std::byte, 16384> memory;
    const stack_t stack{.ss_sp = memory.data(), .ss_flags = 0, .ss_size = memory.size()};
    sigaltstack(&stack, nullptr);
    struct sigaction action {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_ONSTACK | SA_SIGINFO;
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        sigaction(kSignals[i], &action, &previousActions[i]);
}

CrashHandler::~CrashHandler() {
    restorePreviousActions();
    currentFunction = nullptr;
}

void CrashHandler::handle(int signal, siginfo_t* info, void*) {
    if (currentFunction)
        (*currentFunction)();
    restorePreviousActions();
    // A fault recurs when the handler returns. A signal sent by a program must be raised again.
    if (info->si_code <= 0)
        raise(signal);
}

} // namespace apps
