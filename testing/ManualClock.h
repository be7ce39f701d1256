#pragma once

#include "platform/Clock.h"
#include "platform/values/ZoneRules.h"

#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace halvextest {

/// A clock that changes and ticks only in moveTo. Its local time is UTC until zone is set.
class ManualClock final : public platform::Clock {
  public:
    std::int64_t seconds = 0;
    /// The rules of the local time.
    std::optional<platform::ZoneRules> zone;
    /// The durations of all sleeps in microseconds. No sleep takes any time.
    std::vector<std::uint64_t> sleeps;
    std::function<void()> duringSleep = [] {};

    std::int64_t now() const override { return seconds; }
    void sleep(std::uint64_t microseconds) override {
        sleeps.push_back(microseconds);
        duringSleep();
    }
    std::tm localTime(std::int64_t secondsSince1970) const override {
        if (zone)
            return zone->brokenDownTime(secondsSince1970).value_or(std::tm{});
        std::tm time{};
        gmtime_r(&secondsSince1970, &time);
        return time;
    }
    std::unique_ptr<platform::Watch> tick(platform::TickInterval interval,
                                          std::function<void()> handler) override {
        auto ticker = std::make_unique<Ticker>(*this, interval, std::move(handler));
        tickers_.push_back(ticker.get());
        return ticker;
    }

    /// Sets the time and calls the handlers of all tickers.
    void moveTo(std::int64_t time) {
        seconds = time;
        for (const Ticker* ticker : std::vector(tickers_))
            ticker->handler();
    }
    std::vector<platform::TickInterval> intervals() const {
        std::vector<platform::TickInterval> result;
        for (const Ticker* ticker : tickers_)
            result.push_back(ticker->interval);
        return result;
    }

  private:
    struct Ticker final : platform::Watch {
        Ticker(ManualClock& owner, platform::TickInterval every, std::function<void()> code)
            : clock(owner), interval(every), handler(std::move(code)) {}
        ~Ticker() override { std::erase(clock.tickers_, this); }

        ManualClock& clock;
        platform::TickInterval interval;
        std::function<void()> handler;
    };

    std::vector<Ticker*> tickers_;
    platform::ScopedService<platform::Clock> service_{*this};
};

} // namespace halvextest
