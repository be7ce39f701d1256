// Replaces functions of the C library in the whole process. The linker exports them from the
// program, which comes before the C library in the search order, so that calls from the code of
// items arrive here:
// - functions that end the process record the item that called them;
// - new threads inherit the owner of the code that creates them (see platform::runGuarded).

#include "apps/menubar/AlternateStack.h"
#include "apps/menubar/CrashJournal.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <pthread.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

// Defined by the linker: the bounds of this program's code.
extern "C" const char __executable_start; // NOLINT(bugprone-reserved-identifier)
extern "C" const char etext;

namespace {

/// Returns the function that this file's function of the same name replaces.
template <class Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// The bar itself exits for its own reasons, for example on a second SIGTERM, whichever item is
/// running.
bool isPartOfThisProgram(const void* address) {
    return &__executable_start <= address && address < &etext;
}

bool recordExit(const void* caller) {
    apps::CrashJournal* journal = apps::CrashJournal::current();
    return journal && !isPartOfThisProgram(caller) &&
           journal->recordFailure(apps::Failure::Exit, reinterpret_cast<std::uintptr_t>(caller));
}

// These may be called in signal handlers, where the original functions cannot be looked up.

[[noreturn]] void exitImmediately(int status, const void* caller) {
    recordExit(caller);
    for (;;)
        syscall(SYS_exit_group, status);
}

/// Ends this process if @p signal would and an item has sent it. The kernel may deliver the signal
/// to another thread, where its handler could not identify the item.
void exitInsteadOf(int signal, const void* caller) {
    constexpr std::array kEndingSignals{SIGHUP, SIGINT, SIGQUIT, SIGKILL, SIGTERM};
    const bool ends =
        std::find(kEndingSignals.begin(), kEndingSignals.end(), signal) != kEndingSignals.end();
    if (ends && recordExit(caller))
        exitImmediately(EXIT_FAILURE, caller);
}

bool isPartOfQt(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) != 0 && info.dli_fname && std::strstr(info.dli_fname, "libQt6");
}

/// A thread's function, and the owner of the code that created the thread.
struct ThreadStart {
    std::string owner;
    void* (*function)(void*);
    void* argument;
};

void* runThread(void* data) {
    const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(data));
    const auto stack = std::make_unique<apps::AlternateStack>(); // the thread's own may be small
    void* result = nullptr;
    platform::runGuarded(start->owner, [&] { result = start->function(start->argument); });
    return result;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): these are the C library's names.
extern "C" {

void _exit(int status) {
    exitImmediately(status, __builtin_return_address(0));
}

void _Exit(int status) noexcept {
    exitImmediately(status, __builtin_return_address(0));
}

void exit(int status) noexcept {
    static const auto function = original<void(int)>("exit");
    const void* caller = __builtin_return_address(0);
    // Qt calls this when the display is gone, whichever item is running. If an item calls it, the
    // bar's own objects cannot be destroyed in the middle of the item's code.
    if (!isPartOfQt(caller) && recordExit(caller))
        _exit(status);
    if (apps::CrashJournal* journal = apps::CrashJournal::current())
        journal->recordStop();
    function(status);
    std::abort(); // not reached
}

int kill(pid_t process, int signal) noexcept {
    if (process == getpid())
        exitInsteadOf(signal, __builtin_return_address(0));
    return static_cast<int>(syscall(SYS_kill, process, signal));
}

int raise(int signal) noexcept {
    exitInsteadOf(signal, __builtin_return_address(0));
    return static_cast<int>(syscall(SYS_tgkill, getpid(), gettid(), signal));
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*),
                   void* argument) noexcept {
    static const auto create = original<decltype(pthread_create)>("pthread_create");
    const std::string& owner = platform::currentOwner();
    // The threads of Qt serve the whole bar, even if an item was the first to need one.
    if (owner.empty() || isPartOfQt(__builtin_return_address(0)))
        return create(thread, attributes, function, argument);
    auto start = std::make_unique<ThreadStart>(ThreadStart{owner, function, argument});
    const int error = create(thread, attributes, runThread, start.get());
    if (error == 0)
        static_cast<void>(start.release()); // owned by the thread
    return error;
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
