#include "platform/posix/SystemPreferences.h"

#include "platform/Workspace.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/StartProgram.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <sstream>
#include <unistd.h>

namespace platform::posix {
namespace {

/// "bin" beside the folder of this library, or of the program that has its code, then PATH.
std::vector<std::string> folders() {
    std::vector<std::string> result;
    Dl_info here{};
    if (dladdr(reinterpret_cast<const void*>(&startSystemPreferences), &here) != 0)
        if (char* real = ::realpath(here.dli_fname, nullptr)) {
            result.push_back(deletingLastPathComponent(deletingLastPathComponent(real)) + "/bin");
            std::free(real);
        }
    const char* path = std::getenv("PATH");
    std::istringstream rest(path ? path : "");
    for (std::string folder; std::getline(rest, folder, ':');)
        if (folder.starts_with('/'))
            result.push_back(folder);
    return result;
}

std::string findProgram() {
    for (const std::string& folder : folders()) {
        std::string program = appendingPathComponent(folder, kPreferencesProgram);
        if (::access(program.c_str(), X_OK) == 0)
            return program;
    }
    return {};
}

} // namespace

bool startSystemPreferences(const std::vector<std::string>& arguments, std::string& reason) {
    const std::string program = findProgram();
    if (program.empty()) {
        reason = std::string("there is no program ") + kPreferencesProgram;
        return false;
    }
    if (const int error = startProgram(program, arguments)) {
        reason = program + ": " + std::strerror(error);
        return false;
    }
    announceLaunch(kSystemPreferences);
    return true;
}

} // namespace platform::posix
