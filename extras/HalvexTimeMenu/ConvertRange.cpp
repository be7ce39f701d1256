#include "extras/HalvexTimeMenu/ConvertRange.h"

#include <algorithm>
#include <utility>

using namespace platform;

namespace {

constexpr std::int64_t kStep = 15 * 60; // seconds

/// Returns when a day begins; some begin at 01:00, because the clocks skip midnight.
std::int64_t beginOfDay(const ZoneRules& zone, const CivilTime& today, int daysLater) {
    const auto instants = zone.instantsOf({today.year, today.month, today.day + daysLater});
    return instants ? instants->first : 0;
}

} // namespace

ConvertRange::ConvertRange(ZoneRules local, std::int64_t now) : local_(std::move(local)) {
    const CivilTime today = local_.localTime(now);
    start_ = beginOfDay(local_, today, 0);
    middle_ = beginOfDay(local_, today, 1);
    end_ = beginOfDay(local_, today, 2);
}

int ConvertRange::steps() const {
    return static_cast<int>((end_ - start_) / kStep);
}

std::int64_t ConvertRange::instantAt(int step) const {
    return start_ + std::clamp(step, 0, steps()) * kStep;
}

int ConvertRange::stepAt(std::int64_t instant) const {
    const std::int64_t inside = std::clamp(instant, start_, end_) - start_;
    return static_cast<int>((inside + kStep / 2) / kStep);
}

int ConvertRange::stepBeside(std::int64_t instant, int direction) const {
    const std::int64_t offset = std::clamp(instant, start_, end_) - start_;
    const auto next = direction > 0 ? offset / kStep + 1 : (offset + kStep - 1) / kStep - 1;
    return std::clamp(static_cast<int>(next), 0, steps());
}

std::optional<std::int64_t> ConvertRange::instantOf(TimeOfDay time, const ZoneRules& zone,
                                                    std::int64_t current) const {
    const CivilTime shown = zone.localTime(current);
    for (const int daysLater : {0, 1, -1}) {
        const auto instants = zone.instantsOf(
            {shown.year, shown.month, shown.day + daysLater, time.hour, time.minute});
        if (!instants || instants->first < start_ || instants->first > end_)
            continue;
        if (instants->kind == LocalInstants::Kind::Skipped)
            return std::nullopt;
        return instants->first;
    }
    return std::nullopt;
}

std::vector<ConvertRange::Mark> ConvertRange::marks(int hours) const {
    std::vector<Mark> result;
    for (int step = 0; step <= steps(); ++step) {
        const CivilTime time = local_.localTime(instantAt(step));
        if (time.minute == 0 && time.hour % hours == 0)
            result.push_back({step, placeOf(instantAt(step)), time.hour});
    }
    return result;
}

std::vector<std::int64_t> ConvertRange::middles() const {
    return {(start_ + middle_) / 2, (middle_ + end_) / 2};
}

double ConvertRange::placeOf(std::int64_t instant) const {
    return end_ > start_
               ? static_cast<double>(instant - start_) / static_cast<double>(end_ - start_)
               : 0;
}
