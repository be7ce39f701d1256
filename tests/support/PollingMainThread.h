#pragma once

#include "platform/MainThread.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <poll.h>
#include <utility>
#include <vector>

namespace test {

/// Replaces the main thread, for the lifetime of the object, by a loop that runs in runUntil only.
class PollingMainThread final : public platform::MainThread {
  public:
    void perform(std::function<void()> work, Wait) override { work(); }

    std::unique_ptr<platform::Watch> watchReadable(int fileDescriptor,
                                                   std::function<void()> handler) override {
        handlers_[fileDescriptor] = std::move(handler);
        return std::make_unique<Registration>(handlers_, fileDescriptor);
    }

    /// Calls handlers until @p done or the end of @p limit. Returns the last result of @p done.
    bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (!done()) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                return done();
            handleNext(static_cast<int>(left.count()));
        }
        return true;
    }

    /// How many waits have ended with a readable descriptor.
    int wakeUps() const { return wakeUps_; }

  private:
    using Handlers = std::map<int, std::function<void()>>; // by descriptor

    struct Registration final : platform::Watch {
        Registration(Handlers& all, int fd) : handlers(all), descriptor(fd) {}
        ~Registration() override { handlers.erase(descriptor); }

        Handlers& handlers;
        int descriptor;
    };

    void handleNext(int milliseconds) {
        std::vector<pollfd> descriptors;
        for (const auto& [descriptor, handler] : handlers_)
            descriptors.push_back({descriptor, POLLIN, 0});
        if (poll(descriptors.data(), descriptors.size(), milliseconds) > 0)
            ++wakeUps_;
        for (const pollfd& ready : descriptors)
            if (const auto found = handlers_.find(ready.fd);
                ready.revents != 0 && found != handlers_.end()) {
                const auto handler = found->second; // a copy: it may destroy its watch
                handler();
            }
    }

    Handlers handlers_;
    int wakeUps_ = 0;
    platform::ScopedService<platform::MainThread> service_{*this};
};

} // namespace test
