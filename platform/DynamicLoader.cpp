#include "platform/DynamicLoader.h"

#include "platform/ServiceSlot.h"
#include "platform/posix/Defaults.h"

namespace platform {
namespace {

constinit ServiceSlot<DynamicLoader> slot{"DynamicLoader", posix::defaultDynamicLoader};

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
