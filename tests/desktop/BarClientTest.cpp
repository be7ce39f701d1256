#include "platform/qt/BarClient.h"

#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/SpoiltBundle.h"
#include "tests/support/RecordingLog.h"

#include <QDBusVirtualObject>
#include <QUrl>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>

using platform::qt::BarClient;
using test::BarProcess;
using test::PrivateBus;

namespace {

constexpr const char* kOwnClock = "com.apple.menuextra.clock";
constexpr const char* kTestExtra = "test.extra";

std::string addressOf(const PrivateBus& bus) {
    return bus.address().toStdString();
}

std::int32_t get(BarClient& client, const char* identifier = kOwnClock) {
    platform::MenuExtraReference reference = 4711;
    const std::int32_t status = client.getMenuExtra(identifier, reference);
    EXPECT_EQ(reference != 0, status == 0);
    return status;
}

TEST(BarClient, AsksARunningBarForEverything) {
    const auto bus = std::make_shared<PrivateBus>();
    BarProcess bar(bus, {});
    BarClient client(addressOf(*bus));
    const QString path = QString::fromStdString(test::SpoiltBundle(bar).path.string());
    const std::string url = QUrl::fromLocalFile(path).toEncoded().toStdString();
    EXPECT_EQ(client.addMenuExtra("file:///nowhere.menu", 999, 0, 0, 0, 0), -43);
    EXPECT_EQ(get(client, kTestExtra), -1);
    EXPECT_EQ(client.addMenuExtra(url, 999, 0, 0, 0, 0), 0);
    EXPECT_TRUE(BarProcess::eventually([&] { return get(client, kTestExtra) == 0; }));

    const auto items = client.listMenuExtras();
    ASSERT_TRUE(items) << items.reason;
    ASSERT_EQ(items.value->size(), 2U);
    EXPECT_EQ(items.value->at(1).identifier, kTestExtra);
    EXPECT_EQ(items.value->at(1).path, path.toStdString());
    EXPECT_EQ(items.value->at(1).position, 999);
    EXPECT_GT(items.value->at(1).width, 0);

    const platform::Event shiftClick{.modifierFlags = platform::kShiftKeyMask, .clickCount = 2};
    EXPECT_EQ(client.click(kTestExtra, shiftClick).value, true);
    EXPECT_TRUE(bar.logs("click shift 2"));
    EXPECT_EQ(client.click("no.such.item", shiftClick).value, false);
    const std::string picture = bar.folder().file("bar.png");
    EXPECT_EQ(client.snapshot(picture).value, true);
    EXPECT_GT(std::filesystem::file_size(picture), 0U);
    EXPECT_EQ(client.snapshot("relative.png").value, false);

    platform::MenuExtraReference reference = 0;
    client.getMenuExtra(kTestExtra, reference);
    EXPECT_EQ(client.removeMenuExtra(reference, 0), 0);
    EXPECT_EQ(client.removeMenuExtra(reference, 0), -1);
}

TEST(BarClient, GivesUpAtOnceWithoutABusAndWithoutABarAndSaysSoOnce) {
    const PrivateBus bus;
    const std::pair<std::string, const char*> cases[] = {
        {"unix:path=/no/such/bus", "there is no session bus"},
        {"nonsense", "there is no session bus"},
        {addressOf(bus), "the menu bar does not answer: "},
    };
    for (const auto& [address, reason] : cases) {
        test::RecordingLog log;
        BarClient client(address);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_NE(get(client), 0);
        EXPECT_NE(client.addMenuExtra("file:///x.menu", 999, 0, 0, 0, 0), 0);
        EXPECT_NE(client.removeMenuExtra(1, 0), 0);
        EXPECT_THAT(client.listMenuExtras().reason, testing::StartsWith(reason));
        EXPECT_FALSE(client.click("x", {}));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
        EXPECT_THAT(log.take(), testing::ElementsAre(testing::StartsWith(reason)));
    }
}

/// Answers every call with one and the same text.
class GarbageBar final : public QDBusVirtualObject {
  public:
    explicit GarbageBar(const PrivateBus& bus) : bus_(bus.connection()) {
        bus_.registerVirtualObject("/com/quorvanesoftware/MenuBar", this);
        bus_.registerService("com.quorvanesoftware.MenuBar");
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        return bus.send(message.createReply(QString("garbage")));
    }

  private:
    QDBusConnection bus_;
};

TEST(BarClient, TakesNoGarbageFromABar) {
    const PrivateBus bus;
    const GarbageBar garbage(bus);
    test::RecordingLog log;
    BarClient client(addressOf(bus));
    // This thread answers.
    auto statuses = std::async(std::launch::async, [&] {
        return std::vector{get(client), client.addMenuExtra("file:///x.menu", 999, 0, 0, 0, 0),
                           client.removeMenuExtra(1, 0),
                           std::int32_t{client.listMenuExtras() ? 0 : -1},
                           std::int32_t{client.click("x", {}) ? 0 : -1}};
    });
    ASSERT_TRUE(BarProcess::eventually(
        [&] { return statuses.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_THAT(statuses.get(), testing::Each(testing::Ne(0)));
    EXPECT_TRUE(log.contains("the menu bar answers GetMenuExtra with \"s\" and not \"iu\""));
}

TEST(BarClient, HearsOfABarThatDiesInTheMiddleOfALoad) {
    const auto bus = std::make_shared<PrivateBus>();
    BarProcess bar(bus, {"--admit=all"});
    const test::SpoiltBundle extra(bar);
    extra.useClass("HangsAtStart");
    BarClient client(addressOf(*bus));
    EXPECT_EQ(bar.add(extra.path.string()), 0) << "the load follows";
    ASSERT_TRUE(bar.logs("hanging"));
    auto status = std::async(std::launch::async, [&] { return get(client, kTestExtra); });
    EXPECT_EQ(status.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
    const auto start = std::chrono::steady_clock::now();
    bar.kill();
    EXPECT_NE(status.get(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    bar.start();
    EXPECT_TRUE(bar.logs("test.extra at " + extra.path.string() + " is left out"));
    EXPECT_EQ(get(client), 0) << "the client finds the new bar";
}

} // namespace
