#include "tests/desktop/support/BarProcess.h"

#include <QThread>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <utility>

namespace fs = std::filesystem;
using test::BarProcess;
using test::kTestExtra;

namespace {

/// The resources that a process may leak.
std::map<std::string, std::ptrdiff_t> resources(const fs::path& process) {
    std::ifstream maps(process / "maps"), memory(process / "statm");
    std::ptrdiff_t pages = 0;
    memory >> pages >> pages;
    return {{"descriptors", std::distance(fs::directory_iterator(process / "fd"), {})},
            {"threads", std::distance(fs::directory_iterator(process / "task"), {})},
            {"mappings", std::count(std::istreambuf_iterator<char>(maps), {}, '\n')},
            {"kilobytes", pages * 4}};
}

/// Waits until the process is idle: while it writes its list, more files are open.
auto resourcesWhenIdle(const fs::path& process) {
    auto last = resources(process);
    test::eventually([&] {
        QThread::msleep(50);
        auto before = std::exchange(last, resources(process));
        return last["descriptors"] == before["descriptors"];
    });
    return last;
}

// A sanitizer keeps freed memory, and detects leaks itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

/// HALVEX_LOAD_CYCLES sets their number (scripts/load-cycles).
TEST(LoadCycles, LeakNoResources) {
    BarProcess bar;
    const std::string bundle = bar.install(HALVEX_TEST_EXTRA);
    const fs::path process = fs::path("/proc") / std::to_string(bar.processId());
    const auto cycles = [&](int count) {
        for (; count > 0 && !testing::Test::HasFailure(); --count) {
            EXPECT_TRUE(bar.loads(bundle, kTestExtra));
            bar.click(kTestExtra); // its menu is open when it is removed
            EXPECT_EQ(bar.remove(kTestExtra), 0);
            bar.log(); // a full pipe would block the bar
        }
    };
    cycles(10);
    auto before = resourcesWhenIdle(process);
    const char* wanted = std::getenv("HALVEX_LOAD_CYCLES");
    cycles(wanted ? std::atoi(wanted) : 50);
    auto after = resourcesWhenIdle(process);
    for (const auto& [name, growth] : {std::pair("descriptors", 0),
                                       {"threads", 0},
                                       {"mappings", kSanitized ? 1'000'000 : 5},
                                       {"kilobytes", kSanitized ? 1'000'000 : 4096}}) {
        std::cout << name << ": " << before[name] << " after 10, now " << after[name] << '\n';
        EXPECT_LE(after[name], before[name] + growth) << name;
    }
    EXPECT_EQ(bar.picture().height(), 22) << "no menu is open";
    EXPECT_TRUE(bar.logs("unloading"));
    EXPECT_EQ(bar.log().find("still referenced"), std::string::npos);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
