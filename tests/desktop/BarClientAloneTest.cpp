#include "platform/qt/BarClient.h"

#include "tests/desktop/support/BarProcess.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <thread>

namespace {

/// The environment of a bus that starts the bar of the build tree.
test::Settings environment(const QString& home) {
    return {{"HOME", home},
            {"XDG_DATA_DIRS", HALVEX_SHARE},
            {"XDG_DATA_HOME", home + "/none"},
            {"XDG_RUNTIME_DIR", home},
            {"QT_QPA_PLATFORM", "offscreen"}};
}

// This program neither has an application object nor links the desktop library.

TEST(BarClientAlone, StartsTheBarThroughTheBusAndCallsItFromAnyThread) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    const test::TemporaryFolder folder;
    const test::PrivateBus bus(environment(QString::fromStdString(folder.path().string())));
    platform::qt::BarClient client(bus.addressText());
    platform::MenuExtraReference reference = 0;
    EXPECT_EQ(client.getMenuExtra(test::kOwnClock, reference), 0)
        << "the first call waits for the bar to start";
    std::int32_t status = -1;
    std::thread([&] { status = client.removeMenuExtra(reference, 0); }).join();
    EXPECT_EQ(status, 0);
    const auto items = client.listMenuExtras();
    EXPECT_TRUE(items && items.value->empty()) << items.reason;
}

TEST(BarClientAlone, IsToldThatTheBusCannotStartABarWithoutADisplay) {
    const QString noDisplay = ":999999"; // no such X server
    for (const QString& display : {QString(), noDisplay}) {
        const test::TemporaryFolder folder;
        auto settings = environment(QString::fromStdString(folder.path().string()));
        settings.back() = {"QT_QPA_PLATFORM", ""};
        settings.emplace_back("DISPLAY", display);
        const test::PrivateBus bus(settings);
        const std::string reason =
            platform::qt::BarClient(bus.addressText()).listMenuExtras().reason;
        EXPECT_THAT(reason, testing::HasSubstr("no display: Process com.quorvanesoftware.MenuBar "
                                               "exited with status 1"));
    }
}

} // namespace
