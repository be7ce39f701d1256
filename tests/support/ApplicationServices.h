#pragma once

#include "platform/MainThread.h"
#include "platform/Notifications.h"
#include "platform/ProcessList.h"
#include "platform/Workspace.h"
#include "platform/runtime/LocalNotificationCenter.h"

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// Replaces the services for starting and notifying applications, for the lifetime of the object,
/// and records the calls of all of them in one journal.
class ApplicationServices final : platform::ProcessList,
                                  platform::LocalDistributedNotificationCenter,
                                  platform::Workspace,
                                  platform::MainThread {
  public:
    std::vector<std::string> running; ///< names; serial numbers count from 1
    bool opens = true;                ///< the result of openFile
    std::function<void()> onOpen = [] {};

    /// Returns the calls since the last call of journal, in order.
    std::vector<std::string> journal() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }
    /// Runs the work that was queued without waiting.
    void runMainThread() {
        std::unique_lock lock(mutex_);
        const auto work = std::exchange(queue_, {});
        lock.unlock();
        for (const auto& function : work)
            function();
    }
    /// Announces a launch on the distributed centre.
    void announce(const std::string& name) {
        observers().deliver({.name = platform::kDidLaunchApplication,
                             .object = {},
                             .userInfo = {{"NSApplicationName", name}}});
    }
    /// Returns whether launches are observed on the distributed centre and on the workspace's.
    std::pair<bool, bool> observesLaunches() {
        return {observers().observes(platform::kDidLaunchApplication),
                workspaceCenter_.hasObservers(platform::kDidLaunchApplication)};
    }

  private:
    struct Center final : platform::LocalNotificationCenter {
        bool hasObservers(const std::string& name) { return observers().observes(name); }
    };

    std::vector<platform::RunningProcess> processes() const override {
        write("search");
        std::vector<platform::RunningProcess> result;
        for (const std::string& name : running)
            result.push_back({result.size() + 1, name});
        return result;
    }
    void post(const platform::Notification& notification) override {
        write("post " + notification.name + (notification.object ? " about something" : ""));
    }
    bool selectFile(const std::string&, const std::string&) override { return false; }
    bool recycle(const std::string&) override { return false; }
    bool openURL(const std::string&) override { return false; }
    bool openFile(const std::string& path) override {
        write("open " + path);
        onOpen();
        return opens;
    }
    bool openFile(const std::string& path, const std::string& application) override {
        write("open " + path + " with " + application);
        return opens;
    }
    void bringToFront(platform::ProcessSerialNumber process) override {
        write("front " + std::to_string(process));
    }
    platform::NotificationCenter& notificationCenter() override { return workspaceCenter_; }
    void perform(std::function<void()> work, Wait wait) override {
        write(wait == Wait::No ? "main" : "main, waiting");
        if (wait == Wait::UntilDone)
            return work();
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    std::unique_ptr<platform::Watch> watchReadable(int, std::function<void()>) override {
        return nullptr;
    }

    void write(const std::string& line) const {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
    }

    mutable std::mutex mutex_;
    mutable std::vector<std::string> lines_;
    std::vector<std::function<void()>> queue_;
    Center workspaceCenter_;
    platform::ScopedService<platform::ProcessList> processList_{*this};
    platform::ScopedService<platform::DistributedNotificationCenter> distributedCenter_{*this};
    platform::ScopedService<platform::Workspace> workspace_{*this};
    platform::ScopedService<platform::MainThread> mainThread_{*this};
};

} // namespace test
