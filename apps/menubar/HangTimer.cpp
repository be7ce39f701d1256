#include "apps/menubar/HangTimer.h"

#include "platform/Log.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

#include <cerrno>
#include <cstring>
#include <sys/timerfd.h>
#include <unistd.h>

namespace apps {
namespace {

using std::chrono::milliseconds;

// While events are dispatched, the timer is restarted only after this time. It is added to the
// limit, so that the timer does not expire early.
constexpr milliseconds kRestartInterval{250};

void set(int file, milliseconds time) {
    itimerspec setting{};
    setting.it_value = {time.count() / 1000, time.count() % 1000 * 1'000'000};
    timerfd_settime(file, 0, &setting, nullptr);
}

} // namespace

HangTimer::HangTimer(milliseconds limit, int inherited) : limit_(limit), file_(inherited) {
    if (file_ >= 0 || limit == limit.zero())
        return;
    file_ = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    if (file_ < 0)
        platform::logLine("a menu extra that hangs will not be noticed: timerfd_create: %@",
                          std::strerror(errno));
}

HangTimer::~HangTimer() {
    if (file_ >= 0)
        close(file_);
}

void HangTimer::start() {
    if (file_ < 0 || limit_ == limit_.zero())
        return;
    qApp->installEventFilter(this);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &HangTimer::stop);
    eventFilter(nullptr, nullptr); // items are loaded before the first event
}

bool HangTimer::eventFilter(QObject*, QEvent*) {
    const auto now = std::chrono::steady_clock::now();
    if (!isRunning_ || now - startTime_ > kRestartInterval) {
        startTime_ = now;
        isRunning_ = true;
        run();
    }
    return false;
}

void HangTimer::stop() {
    if (isRunning_.exchange(false))
        set(file_, {});
}

void HangTimer::restart() const {
    if (isRunning_)
        run();
}

void HangTimer::run() const {
    set(file_, limit_ + kRestartInterval);
}

} // namespace apps
