#pragma once

#include "platform/MainThread.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <poll.h>
#include <utility>
#include <vector>

namespace test {

/// A main loop that runs while the test says so, in place for as long as it lives.
class PollingMainThread final : public platform::MainThread {
  public:
    void perform(std::function<void()> work, Wait) override { work(); }

    std::unique_ptr<platform::Watch> watchReadable(int fileDescriptor,
                                                   std::function<void()> handler) override {
        auto watch = std::make_unique<Descriptor>(*this, fileDescriptor, std::move(handler));
        watches_.push_back(watch.get());
        return watch;
    }

    /// Handles what comes until @p done or the time is over; gives the last answer of @p done.
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

    /// How often a wait has ended because there was something to do.
    int wakeUps() const { return wakeUps_; }

  private:
    struct Descriptor final : platform::Watch {
        Descriptor(PollingMainThread& owner, int fd, std::function<void()> code)
            : loop(owner), descriptor(fd), handler(std::move(code)) {}
        ~Descriptor() override { std::erase(loop.watches_, this); }

        PollingMainThread& loop;
        int descriptor;
        std::function<void()> handler;
    };

    void handleNext(int milliseconds) {
        std::vector<pollfd> descriptors;
        for (const Descriptor* watch : watches_)
            descriptors.push_back({watch->descriptor, POLLIN, 0});
        if (poll(descriptors.data(), descriptors.size(), milliseconds) > 0)
            ++wakeUps_;
        for (const pollfd& ready : descriptors) {
            const auto watch =
                std::find_if(watches_.begin(), watches_.end(), [&](const Descriptor* candidate) {
                    return candidate->descriptor == ready.fd;
                });
            if (ready.revents == 0 || watch == watches_.end())
                continue;
            const auto handler = (*watch)->handler; // which may destroy the watch
            handler();
        }
    }

    std::vector<Descriptor*> watches_;
    int wakeUps_ = 0;
    platform::ScopedService<platform::MainThread> service_{*this};
};

} // namespace test
