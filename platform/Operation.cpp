#include "platform/Operation.h"

#include "platform/Log.h"

#include <utility>

namespace platform {
namespace {

thread_local OperationScope::Code current = OperationScope::Code::PlugIn;

} // namespace

OperationScope::OperationScope(Code code) : outer_(std::exchange(current, code)) {}

OperationScope::~OperationScope() {
    current = outer_;
}

void logOutOfMemory() {
    systemLog().write("operation failed: out of memory");
}

} // namespace platform
