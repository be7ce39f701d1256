#include "apps/ctl/Services.h"

#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixProcessList.h"
#include "platform/posix/StartProgram.h"
#include "platform/qt/BarClient.h"
#include "platform/qt/BusNotifications.h"
#include "platform/qt/BusProcessList.h"

using platform::ScopedService;

namespace apps {
namespace {

class Files final : public platform::posix::PosixFileManager {
  public:
    Files(const std::string& root, MissingFolders missingFolders)
        : PosixFileManager(root), missingFolders_(missingFolders) {}

    bool createDirectory(const std::string& path) override {
        if (missingFolders_ == MissingFolders::Ignore || PosixFileManager::createDirectory(path))
            return true;
        return missingFolders_ == MissingFolders::CreateIfPossible && path.starts_with("/Library/");
    }

  private:
    MissingFolders missingFolders_;
};

} // namespace

struct Services::Installed {
    Installed(const std::string& root, MissingFolders missingFolders)
        : files(root, missingFolders) {}

    Files files;
    ScopedService<platform::FileManager> filesGuard{files};
    platform::qt::BarClient bar;
    ScopedService<platform::MenuExtraServer> barGuard{bar};
    platform::qt::BusProcessList processes;
    ScopedService<platform::ProcessList> processesGuard{processes};
    platform::qt::BusNotifications notifications;
    ScopedService<platform::DistributedNotificationCenter> notificationsGuard{notifications};
};

Services::Services(const std::string& root, MissingFolders missingFolders) {
    platform::expat::install();
    installed_ = std::make_unique<Installed>(root, missingFolders);
}

Services::~Services() {
    installed_->notifications.flush();
}

int startProgram(const std::string& path) {
    return platform::posix::startProgram(path);
}

std::optional<std::int32_t> processIdentifier(platform::ProcessSerialNumber process) {
    return platform::posix::processIdentifier(process);
}

} // namespace apps
