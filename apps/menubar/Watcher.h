#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Watch.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace apps {

class CrashJournal;

/// The process that starts the bar again when it crashes, exits without recordStop() or hangs
/// (apps/watcher). It waits for the bar and for the hang timer, and does nothing else. A bar that
/// the watcher has started keeps that watcher. The object must live as long as the main loop runs.
/// Main thread only.
class Watcher : platform::NonCopyable {
  public:
    /// What a bar inherits from the watcher that started it; -1 if nothing did.
    struct Inheritance {
        int process = -1;   ///< process identifier of the watcher
        int journal = -1;   ///< file descriptor
        int hangTimer = -1; ///< file descriptor
    };
    /// Reads the inheritance from the environment and removes it there. Call it before starting
    /// other programs.
    static Inheritance takeInheritance();

    /// @p command is the bar's program and its arguments.
    Watcher(const Inheritance& inheritance, std::vector<std::string> command);

    /// Starts the watcher unless one is running. Failures are logged. If the watcher exits, for
    /// example because it is killed, it is started again.
    void start(const CrashJournal& journal, int hangTimer);

  private:
    void follow(int process);
    void restart();

    std::vector<std::string> command_;
    int process_;        // -1 if no watcher is running
    int journal_ = -1;   // set by start
    int hangTimer_ = -1; // set by start
    int processHandle_ = -1;
    std::chrono::steady_clock::time_point startTime_;
    int shortRuns_ = 0; // in a row
    std::unique_ptr<platform::Watch> watch_;
};

} // namespace apps
