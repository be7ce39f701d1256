#include "platform/Graphics.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<Graphics> slot{"Graphics"};

} // namespace

GraphicsContext::~GraphicsContext() = default;
Graphics::~Graphics() = default;

Graphics& graphics() {
    return slot.get();
}

template <>
Graphics* exchangeService<Graphics>(Graphics* service) {
    return slot.exchange(service);
}

} // namespace platform
