#include "platform/qt/BarClient.h"

#include "tests/desktop/support/BarProcess.h"

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using platform::qt::BarClient;

namespace {

// This program has neither an application object nor the desktop's library.

TEST(BarClientAlone, HasTheBusStartTheBarAndAsksItFromAnyThread) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    const test::TemporaryFolder folder;
    const auto path = [&](const char* name) { return QString::fromStdString(folder.file(name)); };
    const test::PrivateBus bus({{"HOME", path("")},
                                {"XDG_DATA_DIRS", HALVEX_SHARE},
                                {"XDG_DATA_HOME", path("none")},
                                {"XDG_RUNTIME_DIR", path("")},
                                {"QT_QPA_PLATFORM", "offscreen"}});
    BarClient client(bus.address().toStdString());
    platform::MenuExtraReference reference = 0;
    EXPECT_EQ(client.getMenuExtra("com.apple.menuextra.clock", reference), 0)
        << "the first answer waits for the bar";
    EXPECT_NE(reference, 0U);
    std::int32_t status = -1;
    std::thread([&] { status = client.removeMenuExtra(reference, 0); }).join();
    EXPECT_EQ(status, 0);
    const auto items = client.listMenuExtras();
    EXPECT_TRUE(items) << items.reason;
    EXPECT_THAT(items.value.value_or(std::vector<platform::qt::BarItem>(1)), testing::IsEmpty());
}

} // namespace
