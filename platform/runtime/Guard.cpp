#include "platform/runtime/Guard.h"

#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/base/Exception.h"
#include "platform/base/NonCopyable.h"

#include <cxxabi.h>
#include <string_view>
#include <utility>

namespace platform {
namespace {

const std::string kNoOwner;

// A pointer, so that a signal handler can read it at any time.
thread_local constinit const std::string* owner = nullptr;

class OwnerScope : NonCopyable {
  public:
    explicit OwnerScope(std::string name)
        : name_(std::move(name)), previous_(std::exchange(owner, &name_)) {}
    ~OwnerScope() { owner = previous_; }

  private:
    const std::string name_;
    const std::string* previous_;
};

void logException(std::string_view name, std::string_view type, std::string_view reason) {
    logLine("%@ raised an exception: %@   reason: %@", name.empty() ? "this program" : name, type,
            reason);
}

} // namespace

const std::string& currentOwner() {
    return owner ? *owner : kNoOwner;
}

bool runGuarded(const std::string& name, const std::function<void()>& code) {
    try {
        const OwnerScope ownerScope(name);
        const OperationScope operationScope(OperationScope::Code::PlugIn);
        code();
        return true;
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is being cancelled
    } catch (const Exception& exception) {
        logException(name, exception.name(), exception.reason());
    } catch (const std::exception& exception) {
        logException(name, "std::exception", exception.what());
    } catch (...) {
        logException(name, "unknown", "(null)");
    }
    return false;
}

} // namespace platform
