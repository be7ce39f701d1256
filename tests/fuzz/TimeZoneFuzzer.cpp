#include "platform/posix/TzFile.h"
#include "tests/fuzz/Support.h"

using fuzz::require;

// Any file is refused with a reason, or its transitions are the same forwards and backwards and its
// local times lead back to their instants.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto [rules, reason] = platform::posix::parseTzFile(fuzz::text(data, size));
    require(rules || !reason.empty(), "a file is refused without a reason");
    if (!rules)
        return 0;
    std::int64_t instant = INT64_MIN;
    for (int i = 0; i < 20; ++i) {
        const auto next = rules->nextTransition(instant);
        if (!next)
            break;
        require(next->instant > instant, "a transition is before the one in front of it");
        const auto previous = rules->previousTransition(next->instant);
        require(previous && previous->instant == next->instant, "a transition is lost backwards");
        const auto local = rules->localTime(next->instant);
        const auto found = rules->instantsOf(local);
        require(!found || (found->first <= next->instant && next->instant <= found->last) ||
                    local.second == 60,
                "a local time does not lead back to its instant");
        instant = next->instant;
    }
    for (const std::int64_t limit : {INT64_MIN, INT64_MAX})
        rules->instantsOf(rules->localTime(limit));
    return 0;
}
