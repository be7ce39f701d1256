#include "platform/posix/FileLock.h"

#include "platform/posix/SystemCalls.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <thread>

namespace platform::posix {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kInterval{1};

// The bytes of the file that are locked. The owner of kNext is the next to get kLock. Without it,
// one that polls would rarely find the file unlocked while another locks it again and again.
enum Byte : off_t { kLock, kNext };

/// Returns 0 or an error number.
int change(int file, short type, Byte byte) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    return retryInterrupted([&] { return ::fcntl(file, F_OFD_SETLK, &range); }) == 0 ? 0 : errno;
}

int lock(int file, Byte byte, Clock::time_point end) {
    for (;;) {
        const int error = change(file, F_WRLCK, byte);
        if ((error != EAGAIN && error != EACCES) || Clock::now() >= end)
            return error;
        std::this_thread::sleep_for(kInterval);
    }
}

} // namespace

FileLock::FileLock(const std::string& path, std::chrono::milliseconds patience)
    : file_(retryInterrupted([&] {
          return ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
      })) {
    const auto end = Clock::now() + patience;
    error_ = file_ ? lock(file_.get(), kNext, end) : errno;
    if (error_ == 0)
        error_ = lock(file_.get(), kLock, end);
    if (file_)
        change(file_.get(), F_UNLCK, kNext);
}

} // namespace platform::posix
