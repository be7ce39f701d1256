#include "platform/posix/OpenURL.h"

#include <cctype>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace platform::posix {
namespace {

constexpr const char* kOpener = "xdg-open";

/// How the opener is started: apart from this program's terminal and pipes, and with the signals
/// that this one may ignore.
class Attributes {
  public:
    Attributes() {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        ::posix_spawnattr_init(&attributes);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF);
        ::posix_spawnattr_setsigdefault(&attributes, &signals);
        ::posix_spawn_file_actions_init(&files);
        ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    ~Attributes() {
        ::posix_spawn_file_actions_destroy(&files);
        ::posix_spawnattr_destroy(&attributes);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t files{};
};

/// Takes note of the end of a process, so that nothing of it stays behind.
void waitBesides(pid_t process) {
    try {
        std::thread([process] { ::waitpid(process, nullptr, 0); }).detach();
    } catch (const std::system_error&) {
        // Then it stays in the table of processes for as long as this one lives.
    }
}

} // namespace

bool openURL(const std::string& url) {
    if (url.empty() || !std::isalpha(static_cast<unsigned char>(url.front())))
        return false;
    const Attributes how;
    std::string opener = kOpener;
    std::string argument = url;
    char* const arguments[] = {opener.data(), argument.data(), nullptr};
    pid_t process = 0;
    if (::posix_spawnp(&process, kOpener, &how.files, &how.attributes, arguments, environ) != 0)
        return false;
    waitBesides(process);
    return true;
}

} // namespace platform::posix
