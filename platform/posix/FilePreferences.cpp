#include "platform/Defaults.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/Operation.h"
#include "platform/Preferences.h"
#include "platform/PropertyListService.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/base/PathStrings.h"
#include "platform/base/Utf8.h"
#include "platform/posix/FileLock.h"
#include "platform/runtime/HandlerList.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <sys/stat.h>

namespace platform::posix {
namespace {

constexpr std::uint64_t kMaximumBytes = 8 << 20;
constexpr std::size_t kMaximumIdentifier = 200; // leaves room for suffixes of temporary files
constexpr const char* kUnreadableSuffix = ".unreadable";
constexpr const char* kLockSuffix = ".lock";

using Dictionary = PropertyList::Dictionary;

/// Identifies the contents of a file, once it is older than the resolution of its times.
struct FileState {
    bool exists = false;
    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;
    timespec modified{};
    timespec changed{};

    friend bool operator==(const FileState& one, const FileState& other) {
        const auto isSame = [](const timespec& left, const timespec& right) {
            return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
        };
        return one.exists == other.exists && one.device == other.device &&
               one.number == other.number && one.size == other.size &&
               isSame(one.modified, other.modified) && isSame(one.changed, other.changed);
    }
};

FileState stateOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    return {true, status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
}

/// Whether any later change of the file changes its state.
bool isSettled(const FileState& state) {
    using namespace std::chrono;
    constexpr milliseconds kResolution{100};
    const auto changed = seconds(state.changed.tv_sec) + nanoseconds(state.changed.tv_nsec);
    return !state.exists || changed + kResolution < system_clock::now().time_since_epoch();
}

struct Contents {
    std::optional<Dictionary> values;
    std::string reason;     ///< if there are no values
    bool isInvalid = false; ///< the file could be read but is not a dictionary
};

Contents readContents(const std::string& path) {
    const auto file = fileManager().readFile(path, kMaximumBytes);
    if (!file)
        return {std::nullopt, file.reason};
    auto list = propertyLists().parse(*file.contents);
    if (!list) // without a line, the reason is not in the file
        return {std::nullopt, list.error.text(), list.error.line > 0};
    if (!list.value->dictionary())
        return {std::nullopt, "the root is not a dictionary", true};
    return {std::move(*list.value->dictionary()), {}};
}

std::vector<std::string> changedKeys(const Dictionary& before, const Dictionary& after) {
    std::map<std::string_view, std::pair<const PropertyList*, const PropertyList*>> values;
    for (const auto& [key, value] : before)
        values[key].first = &value;
    for (const auto& [key, value] : after)
        values[key].second = &value;
    std::vector<std::string> keys;
    for (const auto& [key, pair] : values)
        if (!pair.first || !pair.second || *pair.first != *pair.second)
            keys.emplace_back(key);
    return keys;
}

class FilePreferencesDomain final : public PreferencesDomain,
                                    public std::enable_shared_from_this<FilePreferencesDomain> {
  public:
    explicit FilePreferencesDomain(std::string file) : file_(std::move(file)) {}

    std::string file() const override { return file_; }
    std::shared_ptr<const Dictionary> values() override;
    bool write(const PreferenceChanges& changes) override;
    bool update(const std::function<void(Dictionary&)>& change) override;
    std::unique_ptr<Watch> onChange(Handler handler) override;

  private:
    class Registration;

    bool isCurrent(const FileState& now) const;
    Dictionary read(const FileState& state);
    bool changeLocked(const std::function<void(Dictionary&)>& change);
    std::optional<Dictionary> valuesToChange();
    std::string setAside() const;
    bool startWatching();
    void stopWatchingIfUnused();
    void fileChanged();
    bool writeFailed(std::string_view reason) const;

    const std::string file_;
    std::shared_ptr<const Dictionary> values_; // as last read; null before and after a write
    FileState state_;                          // the file's when values_ were read
    bool isSettled_ = false;
    std::string loggedReason_; // why the file could not be read
    HandlerList<std::vector<std::string>> handlers_;
    std::unique_ptr<Watch> fileWatch_;           // exists while there are handlers
    std::shared_ptr<const Dictionary> reported_; // the values that the handlers know
};

bool FilePreferencesDomain::isCurrent(const FileState& now) const {
    return values_ && now == state_ && (isSettled_ || fileWatch_);
}

std::shared_ptr<const Dictionary> FilePreferencesDomain::values() {
    const FileState now = stateOf(file_);
    if (!isCurrent(now)) {
        values_ = std::make_shared<const Dictionary>(read(now));
        state_ = now;
        isSettled_ = isSettled(now);
    }
    return values_;
}

Dictionary FilePreferencesDomain::read(const FileState& state) {
    // An empty file is one that another program is about to write.
    Contents contents =
        state.exists && state.size > 0 ? readContents(file_) : Contents{Dictionary(), {}};
    if (contents.reason != loggedReason_ && !contents.values)
        logLine("cannot read preferences from %@: %@", file_, contents.reason);
    loggedReason_ = contents.reason;
    return contents.values ? std::move(*contents.values) : Dictionary();
}

bool FilePreferencesDomain::writeFailed(std::string_view reason) const {
    logLine("cannot write preferences to %@: %@", file_, reason);
    return false;
}

bool FilePreferencesDomain::write(const PreferenceChanges& changes) {
    return update([&](Dictionary& values) {
        for (const auto& [key, value] : changes.list()) {
            if (value)
                values.set(key, *value);
            else
                values.erase(key);
        }
    });
}

bool FilePreferencesDomain::update(const std::function<void(Dictionary&)>& change) {
    return guardedStep([&] {
        const std::string folder = deletingLastPathComponent(file_);
        if (!fileManager().fileExists(folder)) {
            fileManager().createDirectory(deletingLastPathComponent(folder));
            fileManager().createDirectory(folder);
        }
        const FileLock lock(file_ + kLockSuffix);
        if (lock.error() != 0)
            return writeFailed(lock.error() == EAGAIN ? "another program has locked the file"
                                                      : std::strerror(lock.error()));
        return changeLocked(change);
    });
}

bool FilePreferencesDomain::changeLocked(const std::function<void(Dictionary&)>& change) {
    const auto old = valuesToChange();
    if (!old)
        return false;
    Dictionary values = *old;
    change(values);
    if (values == *old)
        return true;
    const auto bytes = propertyLists().serialize(values);
    if (!bytes)
        return writeFailed("a property list cannot represent the values");
    if (bytes->size() > kMaximumBytes)
        return writeFailed("the values are too large");
    if (!fileManager().writeFileAtomically(file_, *bytes))
        return writeFailed("the file could not be replaced");
    values_ = nullptr;
    return true;
}

std::optional<Dictionary> FilePreferencesDomain::valuesToChange() {
    const FileState state = stateOf(file_);
    if (!state.exists || state.size == 0)
        return Dictionary();
    Contents contents = readContents(file_);
    if (contents.isInvalid) {
        const std::string kept = setAside();
        if (!kept.empty()) {
            logLine("kept the unreadable preferences as %@: %@", kept, contents.reason);
            return Dictionary();
        }
    }
    if (!contents.values)
        writeFailed(contents.reason);
    return std::move(contents.values);
}

/// Renames the file, which the user may be able to repair. If it is a link, renames its target.
/// Returns the new path, or an empty one on failure.
std::string FilePreferencesDomain::setAside() const {
    const std::string target = fileManager().resolvingSymbolicLinks(file_);
    const std::string newPath = target + kUnreadableSuffix;
    fileManager().removeFile(newPath);
    return fileManager().moveFile(target, newPath) ? newPath : std::string();
}

/// A handler. Keeps the domain alive.
class FilePreferencesDomain::Registration final : public Watch {
  public:
    Registration(std::shared_ptr<FilePreferencesDomain> domain, std::unique_ptr<Watch> handler)
        : domain_(std::move(domain)), handler_(std::move(handler)) {}
    ~Registration() override {
        handler_.reset();
        domain_->stopWatchingIfUnused();
    }

  private:
    std::shared_ptr<FilePreferencesDomain> domain_;
    std::unique_ptr<Watch> handler_;
};

std::unique_ptr<Watch> FilePreferencesDomain::onChange(Handler handler) {
    auto registration =
        std::make_unique<Registration>(shared_from_this(), handlers_.add(std::move(handler)));
    return fileWatch_ || startWatching() ? std::move(registration) : nullptr;
}

bool FilePreferencesDomain::startWatching() {
    reported_ = values_ ? values_ : values();
    const std::weak_ptr<FilePreferencesDomain> weak = weak_from_this();
    const auto changed = [weak] {
        if (const auto domain = weak.lock())
            domain->fileChanged();
    };
    // The first item that needs the watch does not own it: it may be unloaded before the others.
    runGuarded({}, [&] { fileWatch_ = fileManager().watchFile(file_, changed); });
    // A change after the values were read and before the watch started.
    if (fileWatch_ && stateOf(file_) != state_)
        mainThread().perform(changed, MainThread::Wait::No);
    return fileWatch_ != nullptr;
}

void FilePreferencesDomain::stopWatchingIfUnused() {
    if (handlers_.isEmpty())
        fileWatch_.reset();
}

void FilePreferencesDomain::fileChanged() {
    if (!fileWatch_)
        return;
    values_ = nullptr;
    const auto now = values();
    const auto keys = changedKeys(*reported_, *now);
    reported_ = now;
    if (!keys.empty())
        handlers_.call(keys);
}

const char* reasonAgainst(std::string_view identifier) {
    if (identifier.empty())
        return "the name is empty";
    if (identifier.size() > kMaximumIdentifier)
        return "the name is too long";
    if (identifier.front() == '.')
        return "the name starts with a dot";
    while (!identifier.empty()) {
        const auto first = static_cast<unsigned char>(identifier.front());
        const std::size_t length = utf8SequenceLength(identifier);
        if (length == 0 || first < 0x20 || first == 0x7F || first == '/')
            return "it is not a file name";
        identifier.remove_prefix(length);
    }
    return nullptr;
}

class FilePreferences final : public PreferencesService {
  public:
    /// Without a folder, uses that of the user who is then current.
    explicit FilePreferences(std::string folder = "") : folder_(std::move(folder)) {}

    std::shared_ptr<PreferencesDomain> domain(std::string_view identifier) override {
        return guardedOperation([&]() -> std::shared_ptr<PreferencesDomain> {
            if (const char* reason = reasonAgainst(identifier)) {
                logLine("cannot open preferences \"%@\": %@", identifier, reason);
                return nullptr;
            }
            const std::string folder =
                folder_.empty() ? expandingTildeInPath("~/Library/Preferences") : folder_;
            const auto path = appendingPathComponent(folder, std::string(identifier) + ".plist");
            const auto found = domains_.find(path);
            auto domain = found == domains_.end() ? nullptr : found->second.lock();
            return domain ? domain : open(path);
        });
    }

  private:
    using Domains = std::map<std::string, std::weak_ptr<FilePreferencesDomain>>; // by path

    std::shared_ptr<FilePreferencesDomain> open(const std::string& path) {
        std::erase_if(domains_, [](const auto& entry) { return entry.second.expired(); });
        auto domain = std::make_shared<FilePreferencesDomain>(path);
        domains_[path] = domain;
        return domain;
    }

    std::string folder_;
    Domains domains_;
};

} // namespace
} // namespace platform::posix

namespace platform {

PreferencesService& defaults::preferences() {
    static NeverDestroyed<posix::FilePreferences> service;
    return service.get();
}

std::unique_ptr<PreferencesService> makeFilePreferences(std::string folder) {
    return guardedOperation([&]() -> std::unique_ptr<PreferencesService> {
        return std::make_unique<posix::FilePreferences>(std::move(folder));
    });
}

} // namespace platform
