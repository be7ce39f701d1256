#include "platform/MainThread.h"

#include "platform/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<MainThread> slot{"MainThread"};

} // namespace

Watch::~Watch() = default;
MainThread::~MainThread() = default;

MainThread& mainThread() {
    return slot.get();
}

template <>
MainThread* exchangeService<MainThread>(MainThread* service) {
    return slot.exchange(service);
}

} // namespace platform
