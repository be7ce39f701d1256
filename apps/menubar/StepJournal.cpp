#include "apps/menubar/StepJournal.h"

#include "platform/Log.h"
#include "platform/runtime/Guard.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>

using platform::logLine;

namespace apps {
namespace {

constexpr std::string_view kForThisRun = "1";

constexpr std::array kCrashes{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
// What was done at each before; a sanitizer has something to say there.
std::array<struct sigaction, kCrashes.size()> before;
StepJournal* watched = nullptr;

// Fields that each end in a zero byte, which no path has: step, identifier, path, version,
// position, whether the item is for one run only.
using Fields = std::array<std::string, 6>;

std::string encoded(const StepJournal::Note& note) {
    const ItemRecord& item = note.item;
    const bool forThisRun = item.origin == Origin::CommandLine;
    std::string bytes;
    for (const std::string& field :
         Fields{note.step, item.identifier, item.path, item.version, std::to_string(item.position),
                std::string(forThisRun ? kForThisRun : "")})
        bytes.append(field).push_back('\0');
    return bytes;
}

/// Nothing for bytes that no bar has written.
std::optional<StepJournal::Note> decoded(std::string_view bytes) {
    Fields fields;
    for (std::string& field : fields) {
        const auto end = bytes.find('\0');
        if (end == std::string_view::npos)
            return std::nullopt;
        field = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
    }
    auto& [step, identifier, path, version, number, forThisRun] = fields;
    std::int32_t position = 0;
    const char* numberEnd = number.data() + number.size();
    const bool isNumber = std::from_chars(number.data(), numberEnd, position).ptr == numberEnd;
    if (!bytes.empty() || !isNumber || path.empty())
        return std::nullopt;
    return StepJournal::Note{step,
                             {identifier, path, position, version,
                              forThisRun == kForThisRun ? Origin::CommandLine : Origin::Request}};
}

} // namespace

StepJournal::~StepJournal() {
    watched = nullptr;
    if (file_ >= 0)
        close(file_);
}

void StepJournal::open(const std::string& path) {
    file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (file_ >= 0 && flock(file_, LOCK_EX | LOCK_NB) == 0)
        return watchCrashes();
    logLine("no item that crashes this menu bar will be left out: %@: %@", path,
            std::strerror(errno));
    if (file_ >= 0)
        close(file_);
    file_ = -1;
}

std::optional<StepJournal::Note> StepJournal::takeInterrupted() {
    std::array<char, 16384> buffer{};
    const ssize_t size = file_ < 0 ? 0 : pread(file_, buffer.data(), buffer.size(), 0);
    if (size <= 0)
        return std::nullopt;
    write({});
    return decoded({buffer.data(), static_cast<std::size_t>(size)});
}

void StepJournal::watchCrashes() {
    watched = this;
    // The handler needs a stack also when an item has used up its own.
    static std::array<std::byte, 16384> stack;
    const stack_t other{.ss_sp = stack.data(), .ss_flags = 0, .ss_size = stack.size()};
    sigaltstack(&other, nullptr);
    struct sigaction action {};
    action.sa_sigaction = crashed;
    action.sa_flags = SA_ONSTACK | SA_SIGINFO;
    for (std::size_t i = 0; i < kCrashes.size(); ++i)
        sigaction(kCrashes[i], &action, &before[i]);
}

/// Notes whose code it was, and lets the signal do what it would have done. In here memory can only
/// be read.
void StepJournal::crashed(int signal, siginfo_t* info, void*) {
    if (watched && watched->underWay_.empty()) {
        const std::string_view owner = platform::currentOwner();
        for (const Item& item : watched->items_)
            if (item.identifier == owner)
                watched->write(item.bytes);
    }
    for (std::size_t i = 0; i < kCrashes.size(); ++i)
        sigaction(kCrashes[i], &before[i], nullptr);
    if (info->si_code <= 0) // sent by a program, which will not do so again
        raise(signal);
}

void StepJournal::add(const ItemRecord& item) {
    items_.push_back({item.identifier, encoded({"its own code", item})});
}

void StepJournal::remove(std::string_view identifier) {
    std::erase_if(items_, [&](const Item& item) { return item.identifier == identifier; });
}

void StepJournal::begin(const Note& note) {
    if (file_ < 0)
        return;
    underWay_.push_back(encoded(note));
    write(underWay_.back());
}

void StepJournal::end() {
    if (file_ < 0)
        return;
    underWay_.pop_back();
    write(underWay_.empty() ? std::string() : underWay_.back());
}

// A note that is cut off, on a full disk, is none. Nobody is told: there is one at every click.
void StepJournal::write(const std::string& bytes) const {
    if (!bytes.empty()) [[maybe_unused]]
        const auto written = pwrite(file_, bytes.data(), bytes.size(), 0);
    [[maybe_unused]] const int ignored = ftruncate(file_, static_cast<off_t>(bytes.size()));
}

} // namespace apps
