#include <QCoreApplication>

#include <gtest/gtest.h>

// A connection to a private bus keeps something until the end, in this program alone: the bar's own
// leaks are looked for without this.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt6DBus\nleak:libdbus-1\n";
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
