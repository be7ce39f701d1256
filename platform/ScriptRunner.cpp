#include "platform/ScriptRunner.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<ScriptRunner> slot{"ScriptRunner", defaults::scriptRunner};

} // namespace

ScriptRunner::~ScriptRunner() = default;

ScriptRunner& scriptRunner() {
    return slot.get();
}

template <>
ScriptRunner* exchangeService<ScriptRunner>(ScriptRunner* service) {
    return slot.exchange(service);
}

} // namespace platform
