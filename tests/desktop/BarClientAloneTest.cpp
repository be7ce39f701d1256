#include "platform/qt/BarClient.h"

#include "tests/desktop/support/BarProcess.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

#include <thread>

namespace {

// This program neither has an application object nor links the desktop library.

TEST(BarClientAlone, StartsTheBarThroughTheBusAndCallsItFromAnyThread) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    const test::TemporaryFolder folder;
    const QString home = QString::fromStdString(folder.path().string());
    const test::PrivateBus bus({{"HOME", home},
                                {"XDG_DATA_DIRS", HALVEX_SHARE},
                                {"XDG_DATA_HOME", home + "/none"},
                                {"XDG_RUNTIME_DIR", home}});
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

} // namespace
