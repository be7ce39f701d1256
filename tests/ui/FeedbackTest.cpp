#include "ui/ovxFeedback.h"

#include "platform/SystemInfo.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>

using namespace platform;
using testing::ElementsAre;

namespace {

class RecordingSystem final : public SystemInfo {
  public:
    mutable std::vector<SystemFact> queries;

    std::optional<std::uint32_t> query(SystemFact fact) const override {
        queries.push_back(fact);
        return 0;
    }
    TimeZone systemTimeZone() const override { return {}; }

  private:
    ScopedService<SystemInfo> service_{*this};
};

TEST(Feedback, QueriesTheSystemInAFixedOrder) {
    const test::RecordingWorkspace workspace;
    const RecordingSystem system;
    ovxFeedback::ovxSendFeedBackViaMail(nullptr, "Halvex");
    EXPECT_THAT(system.queries, ElementsAre(SystemFact::SystemVersion, SystemFact::BusClock,
                                            SystemFact::ProcessorClock, SystemFact::LogicalMemory,
                                            SystemFact::PhysicalMemory, SystemFact::MediaVersion));
}

} // namespace
