#include "platform/ScriptRunner.h"

#include "platform/ServiceSlot.h"
#include "platform/posix/Defaults.h"

namespace platform {
namespace {

constinit ServiceSlot<ScriptRunner> slot{"ScriptRunner", posix::defaultScriptRunner};

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
