#include "platform/MainThread.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<MainThread> slot{"MainThread"};

} // namespace

MainThread::~MainThread() = default;

MainThread& mainThread() {
    return slot.get();
}

template <>
MainThread* exchangeService<MainThread>(MainThread* service) {
    return slot.exchange(service);
}

} // namespace platform
