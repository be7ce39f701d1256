#include "platform/posix/InotifyFileWatch.h"

#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/Operation.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/SystemCalls.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::posix {
namespace {

/// Events of the folders in the path, except those about their entries: with IN_DELETE, every file
/// that is deleted in the home folder would wake the process.
constexpr std::uint32_t kFolder = IN_DELETE_SELF | IN_MOVE_SELF;
/// Events of a folder in which the next component is missing.
constexpr std::uint32_t kArrivals = kFolder | IN_CREATE | IN_MOVED_TO;
/// Events of the entries of a folder at the end of the path. Files are reported when they have been
/// written, not while they are.
constexpr std::uint32_t kEntries =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB;
/// Events of files and links. If a name is removed or replaced, the system reports IN_ATTRIB.
constexpr std::uint32_t kFile =
    IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
/// Events after which the handler is called even if the file looks the same as before: times are
/// coarse, and a file may have been moved away and back.
constexpr std::uint32_t kChanges = IN_MODIFY | IN_MOVE_SELF | IN_DELETE_SELF | IN_Q_OVERFLOW;

void logWatchFailure(const std::string& path) {
    logLine("cannot watch %@: out of inotify watches", path);
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

    /// Adds watches for the folders and links that the path currently leads through, and removes
    /// all others. Returns false if the system has no watches left.
    bool updateWatches();
    bool watchPath(std::set<int>& watches);
    bool watchFolder(const std::string& folder, std::uint32_t mask, std::set<int>& watches);
    bool watchEntries(const std::string& folder, std::set<int>& watches);
    bool watch(const std::string& path, std::uint32_t mask, std::set<int>& watches);
    Identity identity() const;
    /// Reads all pending events. Returns whether one of them is in kChanges, or in kEntries for the
    /// folder at the end of the path.
    bool readEvents();
    void onReadable();

    std::string path_;
    std::function<void()> handler_;
    Descriptor inotify_;
    std::set<int> watches_;
    int entriesWatch_ = -1; ///< of the folder at the end of the path
    Identity last_;
    std::unique_ptr<Watch> readable_;
};

bool InotifyFileWatch::start() {
    if (!inotify_ || !updateWatches())
        return false;
    last_ = identity();
    readable_ = mainThread().watchReadable(inotify_.get(), [this] { onReadable(); });
    return true;
}

bool InotifyFileWatch::watch(const std::string& path, std::uint32_t mask, std::set<int>& watches) {
    const int number = ::inotify_add_watch(inotify_.get(), path.c_str(), mask | IN_DONT_FOLLOW);
    if (number >= 0)
        watches.insert(number);
    // A folder that may be searched but not read cannot be watched. If it is removed, the
    // watches on the folders above report this.
    return number >= 0 || (errno != ENOSPC && errno != ENOMEM);
}

/// Adds no watch if a file has replaced the folder, because of the trailing slash.
bool InotifyFileWatch::watchFolder(const std::string& folder, std::uint32_t mask,
                                   std::set<int>& watches) {
    return watch(folder + '/', mask, watches);
}

/// Does nothing if the path leads to a file.
bool InotifyFileWatch::watchEntries(const std::string& folder, std::set<int>& watches) {
    entriesWatch_ = ::inotify_add_watch(inotify_.get(), (folder + '/').c_str(),
                                        kFolder | kEntries | IN_DONT_FOLLOW);
    if (entriesWatch_ >= 0)
        watches.insert(entriesWatch_);
    return entriesWatch_ >= 0 || (errno != ENOSPC && errno != ENOMEM);
}

bool InotifyFileWatch::watchPath(std::set<int>& watches) {
    PathWalk walk(path_);
    if (!watch(walk.folder(), kFolder, watches))
        return false;
    while (const auto next = walk.next()) {
        struct stat status {};
        if (::lstat(next->c_str(), &status) != 0) {
            if (!watchFolder(walk.folder(), kArrivals, watches))
                return false;
            if (::lstat(next->c_str(), &status) != 0)
                return true;
        }
        const bool isFolder = S_ISDIR(status.st_mode);
        if (!watch(*next, isFolder ? kFolder : kFile, watches))
            return false;
        // An unreadable file cannot be watched, but its folder reports changes of its mode.
        if (!isFolder && ::faccessat(AT_FDCWD, next->c_str(), R_OK, AT_SYMLINK_NOFOLLOW) != 0 &&
            !watchFolder(walk.folder(), kArrivals | IN_ATTRIB, watches))
            return false;
        if (!S_ISLNK(status.st_mode)) {
            walk.enter(*next);
            continue;
        }
        const auto target = linkTarget(*next);
        if (!target || !walk.follow(*target))
            return true;
    }
    return watchEntries(walk.folder(), watches);
}

bool InotifyFileWatch::updateWatches() {
    std::set<int> watches;
    entriesWatch_ = -1;
    const bool complete = watchPath(watches);
    for (const int number : watches_)
        if (!watches.contains(number))
            ::inotify_rm_watch(inotify_.get(), number);
    watches_ = std::move(watches);
    return complete;
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

bool InotifyFileWatch::readEvents() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool changed = false;
    for (;;) {
        const ssize_t length =
            retryInterrupted([&] { return ::read(inotify_.get(), buffer.data(), buffer.size()); });
        if (length <= 0)
            return changed;
        for (std::size_t i = 0; i < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + i, sizeof(event));
            const bool isEntry = event.wd == entriesWatch_ && event.len > 0;
            changed |= (event.mask & (isEntry ? kEntries : kChanges)) != 0;
            i += sizeof(event) + event.len;
        }
    }
}

void InotifyFileWatch::onReadable() {
    const bool changed = readEvents();
    if (!guardedStep([&] { return updateWatches(); }))
        logWatchFailure(path_);
    const Identity now = identity();
    if (!changed && now == last_)
        return;
    last_ = now;
    const auto handler = handler_; // a copy, because the handler may destroy this watch
    handler();
}

} // namespace

std::unique_ptr<Watch> makeInotifyFileWatch(const std::string& path,
                                            std::function<void()> handler) {
    auto watch = std::make_unique<InotifyFileWatch>(path, std::move(handler));
    if (watch->start())
        return watch;
    logWatchFailure(path);
    return nullptr;
}

} // namespace platform::posix
