#pragma once

#include "platform/Workspace.h"
#include "platform/runtime/LocalNotificationCenter.h"

namespace platform::posix {

/// A workspace that needs no desktop. Starts applications, opens URLs with xdg-open and moves items
/// to the Trash. The operations that show files return false; bringToFront does nothing.
class PosixWorkspace : public Workspace {
  public:
    bool selectFile(const std::string& path, const std::string& rootPath) override;
    bool openFile(const std::string& path) override;
    bool openFile(const std::string& path, const std::string& withApplication) override;
    /// Starts xdg-open, which logs to this process's standard error. Returns false for a URL that
    /// does not begin with a letter, because xdg-open could read it as an option.
    bool openURL(const std::string& url) override;
    bool recycle(const std::string& path) override;
    void bringToFront(ProcessSerialNumber process) override;
    NotificationCenter& notificationCenter() override { return center_; }

  private:
    LocalNotificationCenter center_;
};

} // namespace platform::posix
