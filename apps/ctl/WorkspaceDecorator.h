#pragma once

#include "platform/Workspace.h"

#include <string>

namespace apps {

/// Replaces the shared workspace for the object's lifetime. Forwards every call to the original
/// workspace; subclasses override the operations that they intercept.
class WorkspaceDecorator : public platform::Workspace {
  public:
    bool selectFile(const std::string& path, const std::string& rootPath) override {
        return original_.selectFile(path, rootPath);
    }
    bool openFile(const std::string& path) override { return original_.openFile(path); }
    bool openURL(const std::string& url) override { return original_.openURL(url); }
    bool openFile(const std::string& path, const std::string& withApplication) override {
        return original_.openFile(path, withApplication);
    }
    void bringToFront(platform::ProcessSerialNumber process) override {
        original_.bringToFront(process);
    }
    platform::NotificationCenter& notificationCenter() override {
        return original_.notificationCenter();
    }
    bool recycle(const std::string& path) override { return original_.recycle(path); }

  private:
    platform::Workspace& original_ = platform::sharedWorkspace();
    platform::ScopedService<platform::Workspace> guard_{*this};
};

} // namespace apps
