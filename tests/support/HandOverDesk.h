#pragma once

#include "platform/MainThread.h"
#include "platform/Notifications.h"
#include "platform/ProcessList.h"
#include "platform/Workspace.h"

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// The services that starting and notifying an application takes, in place for as long as it lives.
/// What is asked of them stands in one journal, in the order in which it was asked.
class HandOverDesk {
  public:
    std::vector<std::string> running; ///< names; a process's serial number is its place, from 1
    bool opens = true;
    std::function<void()> onOpen = [] {};

    std::vector<std::string> journal() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }
    /// Does what the main thread was asked for without waiting.
    void runMainThread() {
        std::unique_lock lock(mutex_);
        const auto work = std::exchange(queue_, {});
        lock.unlock();
        for (const auto& piece : work)
            piece();
    }
    /// Announces a launch where the other programs' are heard.
    void announce(const std::string& name) {
        distributed_.deliver({.name = platform::kDidLaunchApplication,
                              .object = {},
                              .userInfo = {{"NSApplicationName", name}}});
    }
    /// On the distributed centre, then on the workspace's.
    std::pair<bool, bool> observesLaunches() {
        return {distributed_.hasObservers(platform::kDidLaunchApplication),
                workspace_.center.hasObservers(platform::kDidLaunchApplication)};
    }

  private:
    struct Processes final : platform::ProcessList {
        explicit Processes(HandOverDesk& owner) : desk(owner) {}
        std::vector<platform::RunningProcess> processes() const override {
            desk.write("search");
            std::vector<platform::RunningProcess> result;
            for (const std::string& name : desk.running)
                result.push_back({result.size() + 1, name});
            return result;
        }
        HandOverDesk& desk;
    };
    struct Center final : platform::NotificationCenter {
        using NotificationCenter::hasObservers;
    };
    struct Distributed final : platform::DistributedNotificationCenter {
        explicit Distributed(HandOverDesk& owner) : desk(owner) {}
        void post(const platform::Notification& notification) override {
            desk.write("post " + notification.name +
                       (notification.object ? " about something" : ""));
        }
        using NotificationCenter::deliver;
        using NotificationCenter::hasObservers;
        HandOverDesk& desk;
    };
    struct Workspace final : platform::Workspace {
        explicit Workspace(HandOverDesk& owner) : desk(owner) {}
        bool selectFile(const std::string&, const std::string&) override { return false; }
        bool recycle(const std::string&) override { return false; }
        bool openURL(const std::string&) override { return false; }
        bool openFile(const std::string& path) override {
            desk.write("open " + path);
            desk.onOpen();
            return desk.opens;
        }
        bool openFile(const std::string& path, const std::string& application) override {
            desk.write("open " + path + " with " + application);
            return desk.opens;
        }
        void bringToFront(platform::ProcessSerialNumber process) override {
            desk.write("front " + std::to_string(process));
        }
        platform::NotificationCenter& notificationCenter() override { return center; }
        HandOverDesk& desk;
        Center center;
    };
    struct MainThread final : platform::MainThread {
        explicit MainThread(HandOverDesk& owner) : desk(owner) {}
        void perform(std::function<void()> work, Wait wait) override {
            desk.write(wait == Wait::No ? "main" : "main, waiting");
            if (wait == Wait::UntilDone)
                return work();
            const std::lock_guard lock(desk.mutex_);
            desk.queue_.push_back(std::move(work));
        }
        std::unique_ptr<platform::Watch> watchReadable(int, std::function<void()>) override {
            return nullptr;
        }
        HandOverDesk& desk;
    };

    void write(const std::string& line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
    }

    std::mutex mutex_;
    std::vector<std::string> lines_;
    std::vector<std::function<void()>> queue_;
    Processes processes_{*this};
    Distributed distributed_{*this};
    Workspace workspace_{*this};
    MainThread mainThread_{*this};
    platform::ScopedService<platform::ProcessList> processesInPlace_{processes_};
    platform::ScopedService<platform::DistributedNotificationCenter> centerInPlace_{distributed_};
    platform::ScopedService<platform::Workspace> workspaceInPlace_{workspace_};
    platform::ScopedService<platform::MainThread> mainThreadInPlace_{mainThread_};
};

} // namespace test
