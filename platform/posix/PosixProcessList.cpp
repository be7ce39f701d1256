#include "platform/posix/PosixProcessList.h"

#include "platform/Defaults.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/ApplicationBundle.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

namespace platform::posix {
namespace {

// A process identifier has at most 22 bits. The rest of a serial number is when the process was
// started, in the system's ticks since it runs.
constexpr unsigned kIdentifierBits = 22;

std::string folderOf(pid_t process) {
    return "/proc/" + std::to_string(process);
}

struct Status {
    char state = 0;
    std::uint64_t startTime = 0;
    std::string command; ///< the program's name, shortened by the system
};

/// What the system says of a process that has not ended.
std::optional<Status> statusOf(pid_t process) {
    std::ifstream file(folderOf(process) + "/stat");
    std::string line;
    std::getline(file, line);
    // The name stands in brackets and may hold some itself.
    const auto open = line.find('(');
    const auto close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open)
        return std::nullopt;
    Status status{.command = line.substr(open + 1, close - open - 1)};
    std::istringstream fields(line.substr(close + 1));
    fields >> status.state;
    constexpr int kBetweenStateAndStartTime = 18;
    std::string ignored;
    for (int i = 0; i < kBetweenStateAndStartTime; ++i)
        fields >> ignored;
    fields >> status.startTime;
    const bool ended = status.state == 'Z' || status.state == 'X';
    return fields && !ended ? std::optional(std::move(status)) : std::nullopt;
}

ProcessSerialNumber serialNumber(pid_t process, const Status& status) {
    return status.startTime << kIdentifierBits | static_cast<ProcessSerialNumber>(process);
}

std::string nameOf(pid_t process, const Status& status) {
    const auto program = programOf(process);
    if (!program)
        return status.command;
    const auto bundle = applicationBundleOf(*program);
    return bundle ? applicationName(*bundle) : lastPathComponent(*program);
}

bool isOwn(pid_t process) {
    struct stat folder {};
    return ::stat(folderOf(process).c_str(), &folder) == 0 && folder.st_uid == ::geteuid();
}

std::vector<pid_t> ownProcesses() {
    std::vector<pid_t> found;
    std::error_code error;
    for (fs::directory_iterator at("/proc", error); !error && at != fs::directory_iterator();
         at.increment(error)) {
        const std::string name = at->path().filename().string();
        pid_t process = 0;
        const auto end = std::from_chars(name.data(), name.data() + name.size(), process).ptr;
        if (end == name.data() + name.size() && isOwn(process))
            found.push_back(process);
    }
    std::ranges::sort(found);
    return found;
}

} // namespace

std::vector<RunningProcess> PosixProcessList::processes() const {
    std::vector<RunningProcess> result;
    for (const pid_t process : ownProcesses())
        if (const auto status = statusOf(process))
            result.push_back({serialNumber(process, *status), nameOf(process, *status)});
    return result;
}

std::optional<pid_t> processIdentifier(ProcessSerialNumber wanted) {
    const auto process =
        static_cast<pid_t>(wanted & ((ProcessSerialNumber{1} << kIdentifierBits) - 1));
    const auto status = statusOf(process);
    return status && serialNumber(process, *status) == wanted ? std::optional(process)
                                                              : std::nullopt;
}

std::optional<std::string> programOf(pid_t process) {
    std::error_code error;
    std::string program = fs::read_symlink(folderOf(process) + "/exe", error).string();
    if (error)
        return std::nullopt;
    // What the system adds when the file has been replaced since.
    constexpr std::string_view kGone = " (deleted)";
    if (program.ends_with(kGone))
        program.resize(program.size() - kGone.size());
    return program;
}

} // namespace platform::posix

platform::ProcessList& platform::defaults::processList() {
    static posix::PosixProcessList list;
    return list;
}
