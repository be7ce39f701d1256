#include "platform/posix/StartProgram.h"

#include "platform/posix/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform::posix {
namespace {

// In a child of a process with threads only what is safe in signal handlers may be called.

void resetSignals() {
    struct sigaction byDefault {};
    byDefault.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &byDefault, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// All but standard error close with the start of the program; until then an error can be told.
void leaveFiles() {
    const int empty = open("/dev/null", O_RDWR);
    dup2(empty, STDIN_FILENO);
    dup2(empty, STDOUT_FILENO);
    close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
}

[[noreturn]] void becomeProgram(char* const* words, int errorPipe) {
    resetSignals();
    leaveFiles();
    execvp(words[0], words);
    const int error = errno;
    [[maybe_unused]] const auto ignored = write(errorPipe, &error, sizeof error);
    _exit(1);
}

/// A child that has a child and ends: the system adopts the latter.
[[noreturn]] void haveChild(char* const* words, int errorPipe) {
    setsid();
    const pid_t child = fork();
    if (child == 0)
        becomeProgram(words, errorPipe);
    const int error = errno;
    if (child < 0) [[maybe_unused]]
        const auto ignored = write(errorPipe, &error, sizeof error);
    _exit(0);
}

/// What comes through the pipe before its other ends close; 0 when nothing does.
int readError(int errorPipe) {
    int error = 0;
    ssize_t size = 0;
    do
        size = read(errorPipe, &error, sizeof error);
    while (size < 0 && errno == EINTR);
    return size == sizeof error ? error : 0;
}

} // namespace

int startProgram(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> words(texts.size() + 1);
    std::ranges::transform(texts, words.begin(), [](std::string& text) { return text.data(); });

    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return errno;
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t child = fork();
    if (child == 0)
        haveChild(words.data(), writing.get());
    if (child < 0)
        return errno;
    writing = Descriptor();
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return readError(reading.get());
}

} // namespace platform::posix
