#pragma once

#include "tests/desktop/support/BarProcess.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace test {

constexpr const char* kFaultyExtra = "test.faulty";

// Sanitized programs start and end several times more slowly.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kSlowness = 5;
#else
constexpr int kSlowness = 1;
#endif

/// Returns the milliseconds since the machine was started.
inline std::int64_t now() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
}

/// The bar with its watcher, so that the process may be replaced at any time.
class WatchedBar : public BarProcess {
  public:
    explicit WatchedBar(const QStringList& arguments = {}, const Settings& settings = {})
        : BarProcess(arguments, settings, std::make_shared<PrivateBus>(), Watcher::Started) {}
    ~WatchedBar() {
        send(SIGTERM);
        hasEnded();
    }

    /// Returns the bar's current process, or 0 if none is running.
    pid_t process() const {
        const auto* daemon = bus->connection().interface();
        return static_cast<pid_t>(daemon->servicePid("com.quorvanesoftware.MenuBar").value());
    }
    void send(int signal) const {
        if (const pid_t bar = process())
            ::kill(bar, signal);
    }
    /// Waits until a process other than @p former shows all of these items. Returns it, or 0.
    pid_t waitForItems(const std::vector<std::string>& wanted, pid_t former = 0) const {
        const auto areShown = [&] {
            const pid_t current = process();
            if (current == 0 || current == former)
                return false;
            const auto shown = identifiers();
            return std::all_of(wanted.begin(), wanted.end(), [&](const std::string& item) {
                return std::find(shown.begin(), shown.end(), item) != shown.end();
            });
        };
        return eventually(areShown) ? process() : 0;
    }
    /// Returns the identifiers of the disabled items, and what each was doing when it failed.
    std::vector<std::pair<std::string, std::string>> disabled() const {
        const std::string list = contents(listFile());
        const auto valueAfter = [&](const std::string& key, std::size_t from) {
            const std::string tag = "<string>";
            const auto begin = list.find(tag, list.find("<key>" + key, from)) + tag.size();
            return list.substr(begin, list.find('<', begin) - begin);
        };
        std::vector<std::pair<std::string, std::string>> result;
        const std::string firstKey = "<key>Identifier";
        auto row = list.find("<key>Left Out");
        while ((row = list.find(firstKey, row)) != std::string::npos) {
            result.emplace_back(valueAfter("Identifier", row), valueAfter("Step", row));
            row += firstKey.size();
        }
        return result;
    }
    /// Returns the times at which the faulty item failed.
    std::vector<std::int64_t> failureTimes() const {
        std::istringstream lines(contents(home() / "failures"));
        return {std::istream_iterator<std::int64_t>(lines), {}};
    }
    std::filesystem::path listFile() const { return stateFolder() / "Menu Bar Items.plist"; }
    std::filesystem::path stateFolder() const {
        return home() / "Library/Application Support/Quorvane Software/Halvex Pro";
    }
    /// Waits until the bar has ended.
    bool hasEnded() const {
        return eventually([this] { return process() == 0; });
    }
    /// Returns whether @p action ends the bar and its watcher too.
    bool endsForGood(const std::function<void()>& action) const {
        const std::string commandLine = "/proc/" + std::to_string(waitForWatcher()) + "/cmdline";
        EXPECT_FALSE(contents(commandLine).empty());
        action();
        return eventually([&] { return contents(commandLine).empty(); }) && process() == 0;
    }
    /// Waits until a process other than @p former restarts the bar. Returns it, or 0.
    pid_t waitForWatcher(pid_t former = 0) const {
        pid_t found = 0;
        const auto isStarted = [&] {
            found = watcher();
            return found != 0 && found != former;
        };
        return eventually(isStarted) ? found : 0;
    }

  private:
    /// Returns the watcher, which is the bar's child or parent, or 0.
    pid_t watcher() const {
        const pid_t bar = process();
        const pid_t parent = parentOf(bar);
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            const pid_t candidate = std::atoi(entry.path().filename().c_str());
            if (contents(entry.path() / "comm") == "halvex-menubar-\n" &&
                (candidate == parent || parentOf(candidate) == bar))
                return candidate;
        }
        return 0;
    }
    static pid_t parentOf(pid_t process) {
        const std::string file = "/proc/" + std::to_string(process) + "/status";
        const std::string status = contents(file);
        const auto line = status.find("PPid:");
        return line == std::string::npos ? -1 : std::atoi(status.c_str() + line + 5);
    }
};

} // namespace test
