#include "platform/runtime/DetachedThread.h"

#include "platform/Log.h"
#include "platform/runtime/Guard.h"

#include <exception>
#include <thread>
#include <utility>

namespace platform {

void detachThread(std::function<void()> work) {
    try {
        std::thread([owner = currentOwner(), work = std::move(work)] {
            runGuarded(owner, work);
        }).detach();
    } catch (const std::exception& error) { // std::system_error or std::bad_alloc
        logLine("cannot start a thread: %@", error.what());
    }
}

} // namespace platform
