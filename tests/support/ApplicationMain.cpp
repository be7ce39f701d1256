#include <gtest/gtest.h>

#include <QApplication>

// Runs tests that need a QApplication, without a display unless QT_QPA_PLATFORM selects one.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
