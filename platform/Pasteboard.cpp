#include "platform/Pasteboard.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<Pasteboard> slot{"Pasteboard"};

} // namespace

Pasteboard::~Pasteboard() = default;

Pasteboard& generalPasteboard() {
    return slot.get();
}

template <>
Pasteboard* exchangeService<Pasteboard>(Pasteboard* service) {
    return slot.exchange(service);
}

} // namespace platform
