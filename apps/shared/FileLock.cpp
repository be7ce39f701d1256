#include "apps/shared/FileLock.h"

#include "platform/Log.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace apps {
namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr std::chrono::milliseconds kInterval{5};

/// Returns 0 or an error number.
int lock(int file) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (flock(file, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() > end)
            return errno;
        std::this_thread::sleep_for(kInterval);
    }
    return 0;
}

} // namespace

FileLock::FileLock(const std::string& path)
    : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600)) {
    if (const int error = file_ < 0 ? errno : lock(file_); error != 0)
        platform::logLine("cannot lock %@: %@", path, std::strerror(error));
}

FileLock::~FileLock() {
    if (file_ >= 0)
        close(file_);
}

} // namespace apps
