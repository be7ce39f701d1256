#include "platform/posix/StartProgram.h"

#include "platform/posix/Descriptor.h"
#include "platform/posix/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform::posix {
namespace {

// The child of a process with several threads may call only async-signal-safe functions.

void resetSignals() {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &action, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Leaves the other files open until exec, because one of them is the pipe for an error.
void detachFiles() {
    const int empty = open("/dev/null", O_RDWR);
    dup2(empty, STDIN_FILENO);
    dup2(empty, STDOUT_FILENO);
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
}

[[noreturn]] void execute(char* const* arguments, int errorPipe) {
    resetSignals();
    detachFiles();
    execvp(arguments[0], arguments);
    const int error = errno;
    [[maybe_unused]] const auto ignored = write(errorPipe, &error, sizeof error);
    _exit(1);
}

/// Starts the program in a grandchild, which the system adopts when the child exits.
[[noreturn]] void executeInGrandchild(char* const* arguments, int errorPipe) {
    setsid();
    const pid_t child = fork();
    if (child == 0)
        execute(arguments, errorPipe);
    const int error = errno;
    if (child < 0) [[maybe_unused]]
        const auto ignored = write(errorPipe, &error, sizeof error);
    _exit(0);
}

/// Returns the error number that the child reports, or 0 if the pipe is closed without one.
int readError(int errorPipe) {
    int error = 0;
    const ssize_t size = retryInterrupted([&] { return read(errorPipe, &error, sizeof error); });
    return size == sizeof error ? error : 0;
}

} // namespace

int startProgram(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers(texts.size() + 1);
    std::ranges::transform(texts, pointers.begin(), [](std::string& text) { return text.data(); });

    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return errno;
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t child = fork();
    if (child == 0)
        executeInGrandchild(pointers.data(), writing.get());
    if (child < 0)
        return errno;
    writing = Descriptor();
    retryInterrupted([&] { return waitpid(child, nullptr, 0); });
    return readError(reading.get());
}

} // namespace platform::posix
