#include "platform/qt/QtMainThread.h"

#include "platform/Guard.h"

#include <QObject>
#include <QSocketNotifier>
#include <QThread>

#include <utility>

namespace platform::qt {
namespace {

class NotifierWatch final : public Watch {
  public:
    NotifierWatch(int fileDescriptor, std::function<void()> handler)
        : notifier_(fileDescriptor, QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                         // Copies: the handler may destroy this watch.
                         [owner = currentOwner(), handler = std::move(handler)] {
                             const auto code = handler;
                             runGuarded(std::string(owner), code);
                         });
    }

  private:
    QSocketNotifier notifier_;
};

} // namespace

QtMainThread::QtMainThread() : context_(new QObject) {}

void QtMainThread::perform(std::function<void()> work, Wait wait) {
    auto guarded = [owner = currentOwner(), work = std::move(work)] { runGuarded(owner, work); };
    const bool onMainThread = QThread::currentThread() == context_->thread();
    if (wait == Wait::No)
        QMetaObject::invokeMethod(context_, std::move(guarded), Qt::QueuedConnection);
    else if (onMainThread)
        guarded();
    else
        QMetaObject::invokeMethod(context_, std::move(guarded), Qt::BlockingQueuedConnection);
}

std::unique_ptr<Watch> QtMainThread::watchReadable(int fileDescriptor,
                                                   std::function<void()> handler) {
    return std::make_unique<NotifierWatch>(fileDescriptor, std::move(handler));
}

} // namespace platform::qt
