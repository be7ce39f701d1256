#pragma once

#include "platform/Workspace.h"
#include "platform/runtime/LocalNotificationCenter.h"

#include <string>
#include <vector>

namespace halvextest {

/// Opens and recycles nothing.
class RecordingWorkspace final : public platform::Workspace {
  public:
    std::vector<std::string> selected; ///< "path|root path"
    std::vector<std::string> opened;   ///< "path", "path|application" or "front <process>"
    bool opens = true;                 ///< the result of openFile
    std::vector<std::string> recycled;
    bool recycles = true; ///< the result of recycle

    bool selectFile(const std::string& path, const std::string& rootPath) override {
        selected.push_back(path + '|' + rootPath);
        return true;
    }
    bool openFile(const std::string& path) override {
        opened.push_back(path);
        return opens;
    }
    bool openURL(const std::string&) override { return false; }
    bool openFile(const std::string& path, const std::string& withApplication) override {
        opened.push_back(path + '|' + withApplication);
        return opens;
    }
    void bringToFront(platform::ProcessSerialNumber process) override {
        opened.push_back("front " + std::to_string(process));
    }
    platform::NotificationCenter& notificationCenter() override { return center_; }
    bool recycle(const std::string& path) override {
        recycled.push_back(path);
        return recycles;
    }

  private:
    platform::LocalNotificationCenter center_;
    platform::ScopedService<platform::Workspace> service_{*this};
};

} // namespace halvextest
