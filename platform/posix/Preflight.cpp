#include "platform/posix/Preflight.h"

#include "platform/base/NonCopyable.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/LoadedFile.h"
#include "platform/posix/SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/auxv.h>
#include <sys/wait.h>
#include <vector>

namespace platform::posix {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr auto kTimeout = std::chrono::seconds(5);
constexpr std::size_t kMaximumOutput = std::size_t{1} << 20;

std::string libraryFolders() {
    const char* variable = std::getenv("LD_LIBRARY_PATH");
    const std::string own =
        deletingLastPathComponent(loadedFileAt(reinterpret_cast<const void*>(&preflightError)));
    return (variable && *variable ? std::string(variable) + ':' : std::string()) + own;
}

/// Runs the loader in a child process. Destroying the object kills the process.
class LoaderProcess : NonCopyable {
  public:
    LoaderProcess(const std::string& loader, const std::string& path);
    ~LoaderProcess() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }

    explicit operator bool() const { return process_ > 0; }
    /// Reads the whole output. Returns false if it exceeds kTimeout or kMaximumOutput.
    bool readOutput(std::string& text);
    /// Returns the exit status.
    int wait() {
        int status = 0;
        retryInterrupted([&] { return ::waitpid(process_, &status, 0); });
        process_ = -1;
        return status;
    }

  private:
    pid_t process_ = -1;
    Descriptor output_;
};

LoaderProcess::LoaderProcess(const std::string& loader, const std::string& path) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    output_ = Descriptor(ends[0]);
    const Descriptor input(ends[1]);
    std::array<std::string, 5> environment{"LD_TRACE_LOADED_OBJECTS=1", "LD_WARN=yes",
                                           "LD_BIND_NOW=yes", "LC_ALL=C",
                                           "LD_LIBRARY_PATH=" + libraryFolders()};
    std::array<char*, 6> variables{};
    for (std::size_t i = 0; i < environment.size(); ++i)
        variables[i] = environment[i].data();
    std::array<std::string, 2> words{loader, path};
    std::array<char*, 3> arguments{words[0].data(), words[1].data(), nullptr};

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, input.get(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, input.get(), STDERR_FILENO);
    if (::posix_spawn(&process_, loader.c_str(), &actions, nullptr, arguments.data(),
                      variables.data()) != 0)
        process_ = -1;
    ::posix_spawn_file_actions_destroy(&actions);
}

bool LoaderProcess::readOutput(std::string& text) {
    const auto end = SteadyClock::now() + kTimeout;
    std::array<char, 4096> buffer{};
    while (text.size() < kMaximumOutput) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - SteadyClock::now());
        if (left.count() <= 0)
            return false;
        pollfd ready{output_.get(), POLLIN, 0};
        if (::poll(&ready, 1, static_cast<int>(left.count())) <= 0)
            continue;
        const ssize_t count = ::read(output_.get(), buffer.data(), buffer.size());
        if (count == 0)
            return true;
        if (count > 0)
            text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return false;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto length = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

std::string trimmed(std::string_view line) {
    std::string result(line.substr(std::min(line.find_first_not_of(" \t"), line.size())));
    for (char& c : result)
        c = c == '\t' ? ' ' : c;
    return result;
}

/// Returns the first error in the loader's output, whose other lines list the libraries found.
std::string errorIn(std::string_view text) {
    constexpr std::string_view kIntroduction = ": error while loading shared libraries: ";
    std::string error;
    for (const std::string_view line : linesOf(text)) {
        if (const auto at = line.find(kIntroduction); at != std::string_view::npos)
            return trimmed(line.substr(at + kIntroduction.size()));
        if (line.ends_with("=> not found"))
            return trimmed(line);
        const bool isFound = line.find(" (0x") != std::string_view::npos ||
                             trimmed(line) == "statically linked" || trimmed(line).empty();
        if (!isFound && error.empty())
            error = trimmed(line);
    }
    return error;
}

} // namespace

std::string preflightError(const std::string& path) {
    // The address where the loader is mapped.
    const auto* base =
        reinterpret_cast<const void*>(::getauxval(AT_BASE)); // NOLINT(performance-no-int-to-ptr)
    const std::string loader = loadedFileAt(base);
    LoaderProcess process(loader, path);
    if (!process)
        return "cannot run the dynamic loader";
    std::string text;
    if (!process.readOutput(text))
        return "the dynamic loader did not finish";
    const int status = process.wait();
    if (WIFSIGNALED(status))
        return std::string("the dynamic loader crashed: ") + ::strsignal(WTERMSIG(status));
    std::string error = errorIn(text);
    if (error.empty() && WEXITSTATUS(status) != 0)
        return "the dynamic loader exited with status " + std::to_string(WEXITSTATUS(status));
    return error;
}

} // namespace platform::posix
