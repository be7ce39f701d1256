#include "platform/posix/InotifyFileWatch.h"

#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/posix/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <limits.h>
#include <set>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::posix {
namespace {

constexpr int kMaximumLinks = 40;
/// Of folders on the way: only what happens to themselves, or every file that others delete in the
/// home folder would wake the program.
constexpr std::uint32_t kFolder = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t kArrivals = IN_CREATE | IN_MOVED_TO;
/// Of files and links. A name that is taken away, by removal or replacement, shows as an attribute.
constexpr std::uint32_t kFile =
    IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;

constexpr std::uint32_t kChanges = IN_MODIFY | IN_MOVE_SELF | IN_DELETE_SELF | IN_Q_OVERFLOW;

/// The components of @p path, in order, before those that are already waiting.
void prepend(std::deque<std::string>& components, const std::string& path) {
    std::size_t end = path.size();
    while (end > 0) {
        const auto slash = path.rfind('/', end - 1);
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        if (start < end)
            components.push_front(path.substr(start, end - start));
        end = slash == std::string::npos ? 0 : slash;
    }
}

class InotifyFileWatch final : public Watch {
  public:
    InotifyFileWatch(std::string path, std::function<void()> handler)
        : path_(std::move(path)), handler_(std::move(handler)),
          inotify_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

    bool start();

  private:
    struct Identity {
        bool exists = false;
        dev_t device = 0;
        ino_t number = 0;
        off_t size = 0;
        std::array<std::int64_t, 4> times{};
        friend bool operator==(const Identity&, const Identity&) = default;
    };

    /// Watches the way to the file as it is now and nothing else. False when the system has no
    /// watches left.
    bool follow();
    bool walk(std::set<int>& watches);
    bool watch(const std::string& path, std::uint32_t mask, std::set<int>& watches);
    Identity identity() const;
    bool drain();
    void onReadable();

    std::string path_;
    std::function<void()> handler_;
    Descriptor inotify_;
    std::set<int> watches_;
    Identity last_;
    std::unique_ptr<Watch> readable_;
};

bool InotifyFileWatch::start() {
    if (!inotify_ || !follow())
        return false;
    last_ = identity();
    readable_ = mainThread().watchReadable(inotify_.get(), [this] { onReadable(); });
    return true;
}

bool InotifyFileWatch::watch(const std::string& path, std::uint32_t mask, std::set<int>& watches) {
    const int number = ::inotify_add_watch(inotify_.get(), path.c_str(), mask | IN_DONT_FOLLOW);
    if (number >= 0)
        watches.insert(number);
    // A folder that may be passed but not read cannot be watched; one that is gone shows above it.
    return number >= 0 || (errno != ENOSPC && errno != ENOMEM);
}

bool InotifyFileWatch::walk(std::set<int>& watches) {
    std::deque<std::string> components;
    prepend(components, path_);
    std::string folder = "/";
    int links = 0;
    if (!watch(folder, kFolder, watches))
        return false;
    while (!components.empty()) {
        const std::string next = folder + components.front();
        components.pop_front();
        struct stat status {};
        if (::lstat(next.c_str(), &status) != 0) {
            if (!watch(folder, kFolder | kArrivals, watches))
                return false;
            if (::lstat(next.c_str(), &status) != 0)
                return true;
        }
        if (!watch(next, S_ISDIR(status.st_mode) ? kFolder : kFile, watches))
            return false;
        // A file that may not be read cannot be watched; its folder tells when that changes.
        if (!S_ISDIR(status.st_mode) &&
            ::faccessat(AT_FDCWD, next.c_str(), R_OK, AT_SYMLINK_NOFOLLOW) != 0 &&
            !watch(folder, kFolder | kArrivals | IN_ATTRIB, watches))
            return false;
        if (!S_ISLNK(status.st_mode)) {
            folder = next + "/";
            continue;
        }
        std::array<char, PATH_MAX> target{};
        const ssize_t length = ::readlink(next.c_str(), target.data(), target.size());
        if (length < 0 || ++links > kMaximumLinks)
            return true;
        prepend(components, {target.data(), static_cast<std::size_t>(length)});
        if (target.front() == '/')
            folder.resize(1);
    }
    return true;
}

bool InotifyFileWatch::follow() {
    std::set<int> watches;
    const bool followed = walk(watches);
    for (const int number : watches_)
        if (!watches.contains(number))
            ::inotify_rm_watch(inotify_.get(), number);
    watches_ = std::move(watches);
    return followed;
}

InotifyFileWatch::Identity InotifyFileWatch::identity() const {
    struct stat status {};
    if (::stat(path_.c_str(), &status) != 0)
        return {};
    return {true,
            status.st_dev,
            status.st_ino,
            status.st_size,
            {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_ctim.tv_sec,
             status.st_ctim.tv_nsec}};
}

/// Takes all events; whether one tells of what may not show: times are coarse, and what was away
/// and came back looks the same.
bool InotifyFileWatch::drain() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool modified = false;
    for (;;) {
        const ssize_t length = ::read(inotify_.get(), buffer.data(), buffer.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length <= 0)
            return modified;
        for (std::size_t i = 0; i < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + i, sizeof(event));
            modified |= (event.mask & kChanges) != 0;
            i += sizeof(event) + event.len;
        }
    }
}

void InotifyFileWatch::onReadable() {
    const bool modified = drain();
    if (!follow())
        logLine("No watches are left to follow %@", path_);
    const Identity now = identity();
    if (!modified && now == last_)
        return;
    last_ = now;
    const auto handler = handler_; // which may destroy this watch
    handler();
}

} // namespace

std::unique_ptr<Watch> makeInotifyFileWatch(const std::string& path,
                                            std::function<void()> handler) {
    auto watch = std::make_unique<InotifyFileWatch>(path, std::move(handler));
    if (watch->start())
        return watch;
    logLine("No watches are left to follow %@", path);
    return nullptr;
}

} // namespace platform::posix
