#include "platform/DynamicLoader.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<DynamicLoader> slot{"DynamicLoader", defaults::dynamicLoader};

} // namespace

LoadedCode::~LoadedCode() = default;
DynamicLoader::~DynamicLoader() = default;

DynamicLoader& dynamicLoader() {
    return slot.get();
}

template <>
DynamicLoader* exchangeService<DynamicLoader>(DynamicLoader* service) {
    return slot.exchange(service);
}

} // namespace platform
