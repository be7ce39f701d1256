#include "tests/desktop/support/TestBundle.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <stop_token>
#include <thread>

namespace fs = std::filesystem;
using namespace test;

namespace {

/// Exchanges two links until it is stopped.
void exchange(const std::stop_token& stop, const fs::path& one, const fs::path& other) {
    while (!stop.stop_requested())
        renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
}

/// Stops when the stranger's code has run. HALVEX_LINK_RACE sets the number of rounds
/// (scripts/soak/link-race). The stranger's code creates a file when it is initialised.
TEST(LinkRace, LetsNoStrangersCodeIntoTheBar) {
    const char* wanted = std::getenv("HALVEX_LINK_RACE");
    const int rounds = wanted ? std::atoi(wanted) : 1000;
    const TemporaryFolder elsewhere;
    const fs::path mark = elsewhere.path() / "mark";
    BarProcess bar({}, {{"HALVEX_PREFLIGHT_TRACE", QString::fromStdString(mark)}});
    const TestBundle good(bar);
    const fs::path stranger = copyBundle(HALVEX_TEST_EXTRA, elsewhere.path() / "TestExtra.menu");
    fs::copy_file(HALVEX_STRANGERS_CODE, stranger / "Contents/Linux/TestExtra",
                  fs::copy_options::overwrite_existing);
    const fs::path link = good.path.parent_path() / "Link.menu";
    const fs::path spare = good.path.parent_path() / "Spare.menu";
    fs::create_directory_symlink(good.path, link);
    fs::create_directory_symlink(stranger, spare);
    const std::jthread exchanger(exchange, link, spare);

    int loaded = 0, declined = 0, foreign = 0;
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < rounds && foreign == 0; ++round) {
        const bool isAdmitted = bar.add(link) == 0;
        declined += isAdmitted ? 0 : 1;
        if (isAdmitted && bar.hasLoaded(kTestExtra))
            loaded += bar.remove(kTestExtra) == 0 ? 1 : 0;
        foreign += fs::remove(mark) ? 1 : 0;
        if (round % 50 == 0)
            bar.log(); // a full pipe would block the bar
    }
    std::cout << rounds << " rounds: " << loaded << " loaded, " << declined << " declined, "
              << foreign << " with the stranger's code, " << timer.elapsed() << " ms\n";
    EXPECT_EQ(foreign, 0);
    EXPECT_GT(loaded, 0);
    EXPECT_GT(declined, 0);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
