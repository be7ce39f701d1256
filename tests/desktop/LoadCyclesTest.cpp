#include "tests/desktop/support/BarProcess.h"

#include <QThread>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <utility>

namespace fs = std::filesystem;
using test::BarProcess;

namespace {

/// What a process has of what it may run out of.
struct Possessions {
    std::ptrdiff_t descriptors = 0, threads = 0, mappings = 0;
    long kilobytes = 0; ///< resident

    /// Once the process has nothing to do: while it writes its list it has more open.
    static Possessions atRest(const fs::path& process) {
        Possessions last(process);
        BarProcess::eventually([&] {
            QThread::msleep(50);
            return last.descriptors == std::exchange(last, Possessions(process)).descriptors;
        });
        return last;
    }

    explicit Possessions(const fs::path& process) {
        descriptors = std::distance(fs::directory_iterator(process / "fd"), {});
        threads = std::distance(fs::directory_iterator(process / "task"), {});
        std::ifstream maps(process / "maps"), memory(process / "statm");
        for (std::string line; std::getline(maps, line);)
            ++mappings;
        long total = 0;
        memory >> total >> kilobytes;
        kilobytes *= 4;
    }
};

std::ostream& operator<<(std::ostream& stream, const Possessions& has) {
    return stream << has.descriptors << " descriptors, " << has.threads << " threads, "
                  << has.mappings << " mappings, " << has.kilobytes << " KB";
}

// A sanitizer keeps what was freed, and finds leaks in its own way.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

/// How many; HALVEX_LOAD_CYCLES says otherwise (scripts/load-cycles).
int cycles() {
    const char* wanted = std::getenv("HALVEX_LOAD_CYCLES");
    return wanted ? std::atoi(wanted) : 50;
}

TEST(LoadCycles, LeaveTheBarAsItWas) {
    constexpr const char* kTestExtra = "test.extra";
    BarProcess bar;
    const std::string bundle = bar.install(HALVEX_TEST_EXTRA);
    const fs::path process = fs::path("/proc") / std::to_string(bar.processId());
    const auto cycle = [&] {
        ASSERT_EQ(bar.add(bundle), 0);
        ASSERT_TRUE(BarProcess::eventually([&] { return bar.reference(kTestExtra) != 0; }));
        bar.click(kTestExtra); // its menu is open when it goes
        ASSERT_EQ(bar.call("RemoveMenuExtra", {bar.reference(kTestExtra), 0}).value(0), 0);
        bar.log(); // a bar whose log nobody reads would wait
    };
    for (int warmUp = 0; warmUp < 10; ++warmUp)
        cycle();
    const auto before = Possessions::atRest(process);
    const int count = cycles();
    for (int i = 0; i < count && !HasFatalFailure(); ++i)
        cycle();
    const auto after = Possessions::atRest(process);
    std::cout << "after 10 cycles: " << before << "\nafter " << count << " more: " << after << '\n';
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.threads, before.threads);
    if (!kSanitized) {
        EXPECT_LE(after.mappings, before.mappings + 5);
        EXPECT_LE(after.kilobytes, before.kilobytes + 4096);
    }
    EXPECT_EQ(bar.log().find("still held"), std::string::npos);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
