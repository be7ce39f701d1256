#include "platform/posix/Preflight.h"

#include "platform/base/NonCopyable.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
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

constexpr auto kPatience = std::chrono::seconds(5);
constexpr std::size_t kMaximumAnswer = std::size_t{1} << 20;

/// The file that an address of this process was mapped from.
std::string fileOfAddress(const void* address) {
    Dl_info info{};
    return address && ::dladdr(address, &info) != 0 && info.dli_fname ? info.dli_fname : "";
}

std::string libraryFolders() {
    const char* asked = std::getenv("LD_LIBRARY_PATH");
    const std::string own =
        deletingLastPathComponent(fileOfAddress(reinterpret_cast<const void*>(&askLoader)));
    return (asked && *asked ? std::string(asked) + ':' : std::string()) + own;
}

class Child : NonCopyable {
  public:
    Child(const std::string& loader, const std::string& path);
    ~Child() {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            ::waitpid(process_, nullptr, 0);
        }
    }

    explicit operator bool() const { return process_ > 0; }
    /// False when it takes longer than anybody would wait.
    bool listen(std::string& text);
    int wait() {
        int status = 0;
        while (::waitpid(process_, &status, 0) < 0 && errno == EINTR)
            continue;
        process_ = -1;
        return status;
    }

  private:
    pid_t process_ = -1;
    Descriptor output_;
};

Child::Child(const std::string& loader, const std::string& path) {
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

bool Child::listen(std::string& text) {
    const auto end = SteadyClock::now() + kPatience;
    std::array<char, 4096> piece{};
    while (text.size() < kMaximumAnswer) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - SteadyClock::now());
        if (left.count() <= 0)
            return false;
        pollfd ready{output_.get(), POLLIN, 0};
        if (::poll(&ready, 1, static_cast<int>(left.count())) <= 0)
            continue;
        const ssize_t count = ::read(output_.get(), piece.data(), piece.size());
        if (count == 0)
            return true;
        if (count > 0)
            text.append(piece.data(), static_cast<std::size_t>(count));
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

/// The first complaint among the lines; the others say where each library was found.
std::string complaintIn(std::string_view text) {
    constexpr std::string_view kIntroduction = ": error while loading shared libraries: ";
    std::string complaint;
    for (const std::string_view line : linesOf(text)) {
        if (const auto at = line.find(kIntroduction); at != std::string_view::npos)
            return trimmed(line.substr(at + kIntroduction.size()));
        if (line.ends_with("=> not found"))
            return trimmed(line);
        const bool isFound = line.find(" (0x") != std::string_view::npos ||
                             trimmed(line) == "statically linked" || trimmed(line).empty();
        if (!isFound && complaint.empty())
            complaint = trimmed(line);
    }
    return complaint;
}

} // namespace

std::string askLoader(const std::string& path) {
    // The system tells where it put the loader as a number.
    const auto* base =
        reinterpret_cast<const void*>(::getauxval(AT_BASE)); // NOLINT(performance-no-int-to-ptr)
    const std::string loader = fileOfAddress(base);
    Child child(loader, path);
    if (!child)
        return "the system's loader cannot be asked";
    std::string text;
    if (!child.listen(text))
        return "the system's loader gives no answer";
    const int status = child.wait();
    if (WIFSIGNALED(status))
        return std::string("the system's loader died: ") + ::strsignal(WTERMSIG(status));
    std::string complaint = complaintIn(text);
    if (complaint.empty() && WEXITSTATUS(status) != 0)
        return "the system's loader ended with " + std::to_string(WEXITSTATUS(status));
    return complaint;
}

} // namespace platform::posix
