#include "tests/desktop/support/BarProcess.h"
#include "tests/soak/Resources.h"

#include <QThread>

#include <gtest/gtest.h>

#include <utility>

namespace fs = std::filesystem;
using test::BarProcess;
using test::kTestExtra;

namespace {

/// Waits until the process is idle: while it writes its list, more files are open.
test::Resources resourcesWhenIdle(const fs::path& process) {
    auto last = test::resources(process);
    test::eventually([&] {
        QThread::msleep(50);
        auto before = std::exchange(last, test::resources(process));
        return last["descriptors"] == before["descriptors"];
    });
    return last;
}

TEST(LoadCycles, LeakNoResources) {
    BarProcess bar;
    const std::string bundle = bar.install(HALVEX_TEST_EXTRA);
    const fs::path process = fs::path("/proc") / std::to_string(bar.processId());
    const auto cycles = [&](int count) {
        for (; count > 0 && !testing::Test::HasFailure(); --count) {
            EXPECT_TRUE(bar.loads(bundle, kTestExtra));
            bar.click(kTestExtra); // its menu is open when it is removed
            EXPECT_EQ(bar.remove(kTestExtra), 0);
        }
    };
    cycles(10);
    const auto before = resourcesWhenIdle(process);
    const int count = test::repetitions("HALVEX_LOAD_CYCLES", 100'000);
    cycles(count);
    test::expectNoGrowth(before, resourcesWhenIdle(process), std::to_string(count) + " cycles");
    EXPECT_EQ(bar.picture().height(), 22) << "no menu is open";
    EXPECT_TRUE(bar.logs("unloading"));
    EXPECT_EQ(bar.log().find("still referenced"), std::string::npos);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
