#include "apps/menubar/CrashJournal.h"

#include "platform/Log.h"
#include "platform/runtime/Guard.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using platform::logLine;

namespace apps {
namespace {

constexpr std::string_view kCommandLineFlag = "1";

// Step, identifier, path, version, position, and the flag for an item from the command line. Each
// field ends with a zero byte, which no path contains.
using Fields = std::array<std::string, 6>;

std::string encode(const CrashJournal::Note& note) {
    const ItemRecord& item = note.item;
    const bool fromCommandLine = item.origin == Origin::CommandLine;
    std::string bytes;
    for (const std::string& field :
         Fields{note.step, item.identifier, item.path, item.version, std::to_string(item.position),
                std::string(fromCommandLine ? kCommandLineFlag : "")})
        bytes.append(field).push_back('\0');
    return bytes;
}

/// Returns std::nullopt for bytes that encode did not produce.
std::optional<CrashJournal::Note> decode(std::string_view bytes) {
    Fields fields;
    for (std::string& field : fields) {
        const auto end = bytes.find('\0');
        if (end == std::string_view::npos)
            return std::nullopt;
        field = bytes.substr(0, end);
        bytes.remove_prefix(end + 1);
    }
    auto& [step, identifier, path, version, number, flag] = fields;
    std::int32_t position = 0;
    const char* numberEnd = number.data() + number.size();
    const bool isNumber = std::from_chars(number.data(), numberEnd, position).ptr == numberEnd;
    if (!bytes.empty() || !isNumber || path.empty())
        return std::nullopt;
    const Origin origin = flag == kCommandLineFlag ? Origin::CommandLine : Origin::Request;
    return CrashJournal::Note{step, {identifier, path, position, version, origin}};
}

} // namespace

CrashJournal::~CrashJournal() {
    crashHandler_.reset(); // before the file that it writes to
    if (file_ >= 0)
        close(file_);
}

void CrashJournal::open(const std::string& path) {
    file_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (file_ >= 0 && flock(file_, LOCK_EX | LOCK_NB) == 0) {
        crashHandler_.emplace([this] { recordCrash(); });
        return;
    }
    logLine("menu extras that crash this menu bar will not be disabled: cannot open %@: %@", path,
            std::strerror(errno));
    if (file_ >= 0)
        close(file_);
    file_ = -1;
}

std::optional<CrashJournal::Note> CrashJournal::takeLastNote() {
    std::array<char, 16384> buffer{};
    const ssize_t size = file_ < 0 ? 0 : pread(file_, buffer.data(), buffer.size(), 0);
    if (size <= 0)
        return std::nullopt;
    write({});
    return decode({buffer.data(), static_cast<std::size_t>(size)});
}

// Runs in a signal handler. During a step the file already has a note.
void CrashJournal::recordCrash() const {
    if (!steps_.empty())
        return;
    const std::string_view owner = platform::currentOwner();
    for (const Item& item : items_)
        if (item.identifier == owner)
            write(item.note);
}

void CrashJournal::add(const ItemRecord& item) {
    items_.push_back({item.identifier, encode({"its own code", item})});
}

void CrashJournal::remove(std::string_view identifier) {
    std::erase_if(items_, [&](const Item& item) { return item.identifier == identifier; });
}

void CrashJournal::begin(const Note& note) {
    if (file_ < 0)
        return;
    steps_.push_back(encode(note));
    write(steps_.back());
}

void CrashJournal::end() {
    if (file_ < 0)
        return;
    steps_.pop_back();
    write(steps_.empty() ? std::string() : steps_.back());
}

// Failures are ignored: logging them would add a line to every click. The next bar rejects a note
// that was truncated because the disk was full.
void CrashJournal::write(const std::string& note) const {
    if (!note.empty()) [[maybe_unused]]
        const auto written = pwrite(file_, note.data(), note.size(), 0);
    [[maybe_unused]] const int ignored = ftruncate(file_, static_cast<off_t>(note.size()));
}

} // namespace apps
