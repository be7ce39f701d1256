#include "platform/posix/PosixWorkspace.h"

#include "platform/Bundle.h"
#include "platform/Defaults.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/posix/ApplicationBundle.h"
#include "platform/posix/StartProgram.h"
#include "platform/posix/SystemPreferences.h"
#include "platform/posix/Trash.h"

#include <cctype>
#include <cstring>

namespace platform::posix {
namespace {

bool startApplication(const std::string& path) {
    std::string reason;
    const auto bundle = Bundle::bundleWithPath(path, &reason);
    const auto program = bundle ? bundle->executablePath() : std::nullopt;
    if (program) {
        const int error = startProgram(*program);
        if (error == 0)
            return true;
        reason = *program + ": " + std::strerror(error);
    } else if (reason.empty()) {
        reason = "CFBundleExecutable is missing or invalid";
    }
    logLine("cannot start %@: %@", path, reason);
    return false;
}

} // namespace

bool PosixWorkspace::selectFile(const std::string&, const std::string&) {
    return false;
}

bool PosixWorkspace::openFile(const std::string& path) {
    return guardedStep([&] { return isApplicationBundle(path) && startApplication(path); });
}

bool PosixWorkspace::openFile(const std::string& path, const std::string& withApplication) {
    return guardedStep([&] {
        std::string reason = "unknown application";
        if (withApplication == kSystemPreferences && startSystemPreferences({path}, reason))
            return true;
        logLine("cannot open %@ with %@: %@", path, withApplication, reason);
        return false;
    });
}

bool PosixWorkspace::openURL(const std::string& url) {
    return guardedStep([&] {
        return !url.empty() && std::isalpha(static_cast<unsigned char>(url.front())) &&
               startProgram("xdg-open", {url}) == 0;
    });
}

bool PosixWorkspace::recycle(const std::string& path) {
    return guardedStep([&] { return moveToTrash(path); });
}

void PosixWorkspace::bringToFront(ProcessSerialNumber) {}

} // namespace platform::posix

// Never destroyed: threads that outlive main may use it.
platform::Workspace& platform::defaults::workspace() {
    static NeverDestroyed<posix::PosixWorkspace> workspace;
    return workspace.get();
}
