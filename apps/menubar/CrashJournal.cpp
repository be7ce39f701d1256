#include "apps/menubar/CrashJournal.h"

#include "platform/Log.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <utility>

using platform::logLine;

namespace apps {
namespace {

constexpr std::chrono::milliseconds kRepetitionPeriod = std::chrono::seconds(10);
constexpr std::string_view kCommandLineFlag = "1";

// Identifier, path, version, position, and the flag for an item from the command line. Each field
// ends with a zero byte, which no path contains.
using Fields = std::array<std::string, 5>;

std::string encode(const ItemRecord& item) {
    const bool fromCommandLine = item.origin == Origin::CommandLine;
    std::string bytes;
    for (const std::string& field :
         Fields{item.identifier, item.path, item.version, std::to_string(item.position),
                std::string(fromCommandLine ? kCommandLineFlag : "")})
        bytes.append(field).push_back('\0');
    return bytes;
}

/// Returns std::nullopt for bytes that encode did not produce. Ignores what follows them.
std::optional<ItemRecord> decode(std::string_view bytes) {
    Fields fields;
    for (std::string& field : fields) {
        const auto end = bytes.find('\0');
        if (end == std::string_view::npos)
            return std::nullopt;
        field = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
    }
    auto& [identifier, path, version, number, flag] = fields;
    std::int32_t position = 0;
    const char* numberEnd = number.data() + number.size();
    const auto [end, error] = std::from_chars(number.data(), numberEnd, position);
    if (error != std::errc() || end != numberEnd || path.empty())
        return std::nullopt;
    const Origin origin = flag == kCommandLineFlag ? Origin::CommandLine : Origin::Request;
    return ItemRecord{identifier, path, position, version, origin};
}

std::int64_t now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
}

std::atomic<CrashJournal*> currentJournal = nullptr;

template <class Value>
void writeAt(int file, std::size_t offset, const Value& value) {
    [[maybe_unused]] const auto ignored =
        pwrite(file, &value, sizeof value, static_cast<off_t>(offset));
}

} // namespace

CrashJournal* CrashJournal::current() {
    return currentJournal;
}

CrashJournal::~CrashJournal() {
    CrashJournal* self = this;
    currentJournal.compare_exchange_strong(self, nullptr);
    if (file_ >= 0)
        close(file_);
}

void CrashJournal::inherit(int file) {
    inherited_ = file;
}

void CrashJournal::open(const std::string& path) {
    file_ = inherited_;
    if (file_ < 0)
        file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (!isUsable()) {
        logLine("cannot record in %@ which menu extras crash the menu bar: %@", path,
                std::strerror(errno));
        useMemory();
    }
    readLastRun();
    currentJournal = this;
}

bool CrashJournal::isUsable() {
    if (file_ < 0 || flock(file_, LOCK_EX | LOCK_NB) != 0)
        return false;
    // Allocated now: the disk may be full when an item fails.
    errno = posix_fallocate(file_, 0, sizeof(JournalBlock));
    return errno == 0;
}

void CrashJournal::useMemory() {
    if (file_ >= 0)
        close(file_);
    file_ = memfd_create("halvex-menubar-journal", MFD_CLOEXEC);
}

void CrashJournal::readLastRun() {
    if (pread(file_, &lastRun_, sizeof lastRun_, 0) != sizeof lastRun_ ||
        lastRun_.magic != JournalBlock::kMagic)
        lastRun_ = {};
    block_.magic = JournalBlock::kMagic;
    block_.processId = getpid();
    block_.exitTimes = lastRun_.exitTimes;
    const bool isUnexplained = lastRun_.processId != 0 &&
                               lastRun_.state == JournalBlock::State::Running &&
                               lastRun_.failure == Failure::None;
    if (isUnexplained) {
        std::shift_right(block_.exitTimes.begin(), block_.exitTimes.end(), 1);
        block_.exitTimes.front() = now();
    }
    writeAt(file_, 0, block_);
}

std::optional<CrashJournal::Note> CrashJournal::takeLastNote() {
    const Failure failure = std::exchange(lastRun_.failure, Failure::None);
    if (failure == Failure::None)
        return std::nullopt;
    const auto item = decode({lastRun_.item.data(), lastRun_.item.size()});
    if (!item)
        return std::nullopt;
    lastRun_.step.back() = '\0';
    return Note{lastRun_.step.data(), *item, failure};
}

bool CrashJournal::exitsRepeatedly() const {
    const std::int64_t time = block_.exitTimes.back();
    return time <= now() && time > now() - kRepetitionPeriod.count();
}

void CrashJournal::add(const ItemRecord& item) {
    items_.add(item.identifier, encode(item));
}

void CrashJournal::setCode(std::string_view identifier, platform::AddressRange addresses) {
    items_.setCode(identifier, addresses);
}

bool CrashJournal::recordFailure(Failure failure, std::uintptr_t address) {
    if (getpid() != block_.processId)
        return false; // in a child process that has not yet started its program
    const auto* entry = items_.find(address, platform::currentOwner());
    if (!entry || hasFailed_.test_and_set())
        return false;
    std::array<char, sizeof(JournalBlock::step)> step{};
    std::strncpy(step.data(), stepOf(entry->identifier), step.size() - 1);
    writeAt(file_, offsetof(JournalBlock, step), step);
    [[maybe_unused]] const auto ignored =
        pwrite(file_, entry->data.data(), std::min(entry->data.size(), sizeof(JournalBlock::item)),
               offsetof(JournalBlock, item));
    writeAt(file_, offsetof(JournalBlock, failure), failure); // last: makes the note valid
    return true;
}

const char* CrashJournal::stepOf(std::string_view identifier) const {
    if (getpid() != gettid())
        return "its own thread";
    return innermost_ && innermost_->identifier_ == identifier ? innermost_->step_ : "its own code";
}

void CrashJournal::recordStop() {
    if (getpid() == block_.processId && !hasFailed_.test())
        writeAt(file_, offsetof(JournalBlock, state), JournalBlock::State::Stopping);
}

} // namespace apps
