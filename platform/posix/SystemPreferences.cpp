#include "platform/posix/SystemPreferences.h"

#include "platform/Workspace.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/LoadedFile.h"
#include "platform/posix/StartProgram.h"
#include "platform/posix/SymbolicLinks.h"

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <unistd.h>

namespace platform::posix {
namespace {

constexpr const char* kProgram = "halvex-preferences";

/// Returns the folders in the order of the search: "bin" next to the folder that contains this
/// code, then the folders in PATH.
std::vector<std::string> searchFolders() {
    std::vector<std::string> result;
    const auto library =
        realPath(loadedFileAt(reinterpret_cast<const void*>(&startSystemPreferences)));
    if (library)
        result.push_back(deletingLastPathComponent(deletingLastPathComponent(*library)) + "/bin");
    const char* path = std::getenv("PATH");
    std::istringstream rest(path ? path : "");
    for (std::string folder; std::getline(rest, folder, ':');)
        if (folder.starts_with('/'))
            result.push_back(folder);
    return result;
}

std::string findProgram() {
    for (const std::string& folder : searchFolders()) {
        std::string program = appendingPathComponent(folder, kProgram);
        if (::access(program.c_str(), X_OK) == 0)
            return program;
    }
    return {};
}

} // namespace

bool startSystemPreferences(const std::vector<std::string>& arguments, std::string& reason) {
    const std::string program = findProgram();
    if (program.empty()) {
        reason = std::string("program not found: ") + kProgram;
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
