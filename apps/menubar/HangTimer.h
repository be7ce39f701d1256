#pragma once

#include <QObject>

#include <atomic>
#include <chrono>

namespace apps {

/// A timer that expires when the main thread has dispatched no event for a certain time. The
/// watcher waits for it. It runs while the main thread is busy, and is stopped before the thread
/// blocks to wait for events. This takes two system calls per wake-up, and at most four per second
/// while the thread stays busy. The time in which the computer sleeps does not count.
class HangTimer final : public QObject {
    Q_OBJECT

  public:
    /// @p limit of zero turns the timer off. @p inherited is the timer of the previous bar, which
    /// the watcher waits for already, or -1. Takes ownership of it.
    HangTimer(std::chrono::milliseconds limit, int inherited);
    ~HangTimer() override;

    /// Returns the file descriptor, or -1 if the timer is off. The object keeps ownership.
    int file() const { return file_; }

    /// Starts to follow the main thread's events.
    void start();
    /// Restarts the timer if it is running. Async-signal-safe.
    void restart() const;

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    void run() const;
    void stop();

    const std::chrono::milliseconds limit_;
    int file_;
    std::atomic<bool> isRunning_ = false;
    std::chrono::steady_clock::time_point startTime_;
};

} // namespace apps
