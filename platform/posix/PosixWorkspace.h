#pragma once

#include "platform/Workspace.h"
#include "platform/runtime/LocalNotificationCenter.h"

namespace platform::posix {

/// The workspace of a program without a desktop: it has a Trash, starts applications and opens
/// URLs, and has nothing that could show files or move windows.
class PosixWorkspace : public Workspace {
  public:
    bool selectFile(const std::string& path, const std::string& rootPath) override;
    bool openFile(const std::string& path) override;
    bool openFile(const std::string& path, const std::string& withApplication) override;
    bool openURL(const std::string& url) override;
    bool recycle(const std::string& path) override;
    void bringToFront(ProcessSerialNumber process) override;
    NotificationCenter& notificationCenter() override { return center_; }

  private:
    LocalNotificationCenter center_;
};

} // namespace platform::posix
