#include "platform/qt/QtMainThread.h"

#include "platform/runtime/Guard.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QSocketNotifier>
#include <QThread>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace platform::qt {
namespace {

class NotifierWatch final : public Watch {
  public:
    NotifierWatch(int fileDescriptor, std::function<void()> handler)
        : notifier_(fileDescriptor, QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                         // Copied: the handler may destroy this watch.
                         [owner = currentOwner(), handler = std::move(handler)] {
                             const auto code = handler;
                             runGuarded(std::string(owner), code);
                         });
    }

  private:
    QSocketNotifier notifier_;
};

} // namespace

/// Work in the order in which it was queued. Qt's event queue only wakes the main thread: the work
/// itself is passed under a mutex, which the thread sanitizer can check.
class QtMainThread::Queue final : public QObject {
  public:
    struct Work {
        std::function<void()> code;
        bool isDone = false;
    };

    void add(std::shared_ptr<Work> work) {
        const std::lock_guard lock(mutex_);
        queued_.push_back(std::move(work));
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
    void waitFor(const Work& work) {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [&] { return work.isDone; });
    }

  private:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        std::unique_lock lock(mutex_);
        const std::shared_ptr<Work> work = std::move(queued_.front());
        queued_.pop_front();
        lock.unlock();
        std::exchange(work->code, nullptr)();
        lock.lock();
        work->isDone = true;
        done_.notify_all();
        return true;
    }

    std::mutex mutex_;
    std::condition_variable done_;
    std::deque<std::shared_ptr<Work>> queued_;
};

QtMainThread::QtMainThread() : queue_(new Queue) {}

void QtMainThread::perform(std::function<void()> work, Wait wait) {
    auto guarded = [owner = currentOwner(), work = std::move(work)] { runGuarded(owner, work); };
    const bool onMainThread = QThread::currentThread() == queue_->thread();
    if (wait == Wait::UntilDone && onMainThread)
        return guarded();
    const auto entry = std::make_shared<Queue::Work>(Queue::Work{std::move(guarded)});
    queue_->add(entry);
    if (wait == Wait::UntilDone)
        queue_->waitFor(*entry);
}

std::unique_ptr<Watch> QtMainThread::watchReadable(int fileDescriptor,
                                                   std::function<void()> handler) {
    return std::make_unique<NotifierWatch>(fileDescriptor, std::move(handler));
}

} // namespace platform::qt
