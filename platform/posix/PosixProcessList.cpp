#include "platform/posix/PosixProcessList.h"

#include "platform/Bundle.h"
#include "platform/Defaults.h"
#include "platform/Operation.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/ApplicationBundle.h"
#include "platform/posix/Folder.h"

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

// The low 22 bits of a serial number are the process identifier, which is never longer. The
// other bits are the start time of the process, in clock ticks since the system was booted.
constexpr unsigned kIdentifierBits = 22;

std::string procFolder(pid_t process) {
    return "/proc/" + std::to_string(process);
}

struct ProcessStatus {
    char state = 0;
    std::uint64_t startTime = 0;
    std::string command; ///< the name of the program, truncated by the system
};

/// Returns std::nullopt if the process has exited.
std::optional<ProcessStatus> statusOf(pid_t process) {
    std::ifstream file(procFolder(process) + "/stat");
    std::string line;
    std::getline(file, line);
    // The name is in parentheses and may itself contain parentheses.
    const auto open = line.find('(');
    const auto close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open)
        return std::nullopt;
    ProcessStatus status{.command = line.substr(open + 1, close - open - 1)};
    std::istringstream fields(line.substr(close + 1));
    fields >> status.state;
    constexpr int kBetweenStateAndStartTime = 18;
    std::string ignored;
    for (int i = 0; i < kBetweenStateAndStartTime; ++i)
        fields >> ignored;
    fields >> status.startTime;
    const bool exited = status.state == 'Z' || status.state == 'X';
    return fields && !exited ? std::optional(std::move(status)) : std::nullopt;
}

ProcessSerialNumber serialNumber(pid_t process, const ProcessStatus& status) {
    return status.startTime << kIdentifierBits | static_cast<ProcessSerialNumber>(process);
}

std::string nameOf(pid_t process, const ProcessStatus& status) {
    const auto program = programOf(process);
    if (!program)
        return status.command;
    const auto bundle = applicationBundleOf(*program);
    return bundle ? applicationName(*bundle) : lastPathComponent(*program);
}

bool isOfCurrentUser(pid_t process) {
    struct stat folder {};
    return ::stat(procFolder(process).c_str(), &folder) == 0 && folder.st_uid == ::geteuid();
}

std::vector<pid_t> processesOfCurrentUser() {
    std::vector<pid_t> found;
    const Descriptor folder = openFolder("/proc");
    const auto names = folder ? namesIn(folder.get()) : std::nullopt;
    for (const std::string& name : names.value_or(std::vector<std::string>())) {
        pid_t process = 0;
        const auto end = std::from_chars(name.data(), name.data() + name.size(), process).ptr;
        if (end == name.data() + name.size() && isOfCurrentUser(process))
            found.push_back(process);
    }
    std::ranges::sort(found);
    return found;
}

} // namespace

std::vector<RunningProcess> PosixProcessList::processes() const {
    return guardedOperation([&] {
        std::vector<RunningProcess> result;
        for (const pid_t process : processesOfCurrentUser())
            if (const auto status = statusOf(process))
                result.push_back({serialNumber(process, *status), nameOf(process, *status)});
        return result;
    });
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
    std::string program = fs::read_symlink(procFolder(process) + "/exe", error).string();
    if (error)
        return std::nullopt;
    // The system appends this once the file has been removed or replaced.
    constexpr std::string_view kDeleted = " (deleted)";
    if (program.ends_with(kDeleted))
        program.resize(program.size() - kDeleted.size());
    return program;
}

std::optional<std::string> applicationIdentifier(ProcessSerialNumber serialNumber) {
    const auto process = processIdentifier(serialNumber);
    const auto program = process ? programOf(*process) : std::nullopt;
    const auto path = program ? applicationBundleOf(*program) : std::nullopt;
    const auto bundle = path ? Bundle::bundleWithPath(*path) : nullptr;
    return bundle ? bundle->bundleIdentifier() : std::nullopt;
}

} // namespace platform::posix

platform::ProcessList& platform::defaults::processList() {
    static posix::PosixProcessList list;
    return list;
}
