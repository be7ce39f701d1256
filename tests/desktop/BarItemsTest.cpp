#include "identifiers/ExportedIdentifiers.h"
#include "platform/qt/BarClient.h"
#include "platform/qt/SignalReceiver.h"
#include "tests/desktop/support/TestBundle.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using namespace test;
using platform::qt::BarClient;
using platform::qt::KnownItem;
using testing::ElementsAre;

namespace {

constexpr const char* kCracker = "net.sourceforge.menucracker";

/// A running bar, and its client.
class BarItems : public testing::Test {
  protected:
    KnownItem item(const std::string& path) {
        const auto items = client.items();
        EXPECT_TRUE(items) << items.reason;
        for (const KnownItem& one : *items.value)
            if (one.path == path)
                return one;
        return {};
    }
    bool becomes(const std::string& path, const std::string& state, const std::string& reason) {
        return eventually([&] {
            const KnownItem found = item(path);
            return found.state == state && found.reason.find(reason) != std::string::npos;
        });
    }

    const std::shared_ptr<PrivateBus> bus = std::make_shared<PrivateBus>();
    BarProcess bar{{}, {}, bus};
    BarClient client{bus->addressText()};
};

TEST_F(BarItems, HaveAStateAndAReason) {
    const std::string path = bar.install(HALVEX_TEST_EXTRA);
    ASSERT_TRUE(bar.loads(path, kTestExtra, 7));
    const KnownItem loaded = item(path);
    EXPECT_EQ(std::tie(loaded.identifier, loaded.position, loaded.version, loaded.name,
                       loaded.isOwn, loaded.state, loaded.reason),
              std::tuple(kTestExtra, 7, "1.0", "TestExtra", false, "loaded", ""));
    EXPECT_GT(loaded.width, 0);
    EXPECT_TRUE(client.items().value->at(0).isOwn) << "the clock";

    EXPECT_EQ(bar.add(HALVEX_TIME_MENU), -2);
    EXPECT_TRUE(becomes(HALVEX_TIME_MENU, "refused", "it is not in "));
    EXPECT_TRUE(item(HALVEX_TIME_MENU).isOwn);
    EXPECT_EQ(client.disable(kTestExtra), "");
    EXPECT_TRUE(becomes(path, "disabled", "it was turned off"));
    fs::remove(fs::path(path) / "Contents/Linux/TestExtra");
    EXPECT_EQ(client.enable(kTestExtra), "");
    EXPECT_TRUE(becomes(path, "refused", "is missing"));
    fs::remove_all(path);
    EXPECT_TRUE(becomes(path, "missing", "no bundle at " + path));
    EXPECT_EQ(client.enable(kTestExtra), std::string(kTestExtra) + ": no bundle at " + path);
    EXPECT_EQ(client.disable(kTestExtra), "") << "forgets it";
    EXPECT_EQ(client.enable(kTestExtra), "test.extra: unknown menu extra");
}

TEST_F(BarItems, StayDisabledUntilTheyAreEnabledEvenWithAnotherVersion) {
    const TestBundle extra{bar};
    ASSERT_TRUE(bar.loads(extra.path, kTestExtra));
    EXPECT_EQ(client.disable(kTestExtra), "");
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    extra.replaceInInfo("CFBundleVersion</key>\n\t<string>1.0",
                        "CFBundleVersion</key>\n\t<string>1.1");
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_TRUE(bar.logs(extra.path.string() + " is disabled: it was turned off"));
    EXPECT_EQ(client.enable(kTestExtra), "");
    EXPECT_TRUE(bar.hasLoaded(kTestExtra));
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra));
}

TEST_F(BarItems, AreInTheSameOrderAfterARestart) {
    const std::string test = bar.install(HALVEX_TEST_EXTRA);
    ASSERT_TRUE(bar.loads(test, kTestExtra, 5));
    ASSERT_TRUE(bar.loads(bar.install(HALVEX_TIME_MENU), HalvexMenuID, 5));
    using Step = std::function<void()>;
    const std::pair<Step, std::vector<std::string>> steps[] = {
        {[&] { client.setPosition(kTestExtra, 5); }, {kOwnClock, HalvexMenuID, kTestExtra}},
        {[&] { client.setPosition(HalvexMenuID, 0); }, {kOwnClock, HalvexMenuID, kTestExtra}},
        {[&] { client.setPosition(kOwnClock, 0); }, {HalvexMenuID, kOwnClock, kTestExtra}},
        {[&] { client.setPosition(kTestExtra, -1); }, {kTestExtra, HalvexMenuID, kOwnClock}},
        {[&] {
             client.disable(HalvexMenuID);
             client.enable(HalvexMenuID);
             bar.hasLoaded(HalvexMenuID);
         },
         {kTestExtra, HalvexMenuID, kOwnClock}},
        {[&] {
             const fs::path moved = copyBundle(test, fs::path(test).parent_path() / "Other.menu");
             bar.remove(kTestExtra);
             bar.loads(moved, kTestExtra, 0);
         },
         {HalvexMenuID, kOwnClock, kTestExtra}},
    };
    for (const auto& [step, expected] : steps) {
        step();
        EXPECT_EQ(bar.identifiers(), expected);
        bar.start();
        EXPECT_EQ(bar.identifiers(), expected) << "after a restart";
    }
    EXPECT_EQ(client.setPosition("no.such.item", 5), "no.such.item: unknown menu extra");
}

TEST_F(BarItems, AreAnnouncedWhenTheyChange) {
    std::vector<std::string> received;
    platform::qt::SignalReceiver receiver([&](const QDBusMessage& signal) {
        received.push_back(signal.member().toStdString());
        for (const QVariant& argument : signal.arguments())
            received.back() += ' ' + argument.toString().toStdString();
    });
    bus->connection().connect({}, "/com/quorvanesoftware/MenuBar", "com.quorvanesoftware.MenuBar1",
                              {}, &receiver, SLOT(receive(QDBusMessage)));
    const auto announces = [&](const std::string& signal) {
        const bool found = eventually([&] {
            return std::ranges::count(received, signal) > 0 &&
                   std::ranges::count(received, "ItemsChanged") > 0;
        });
        received.clear();
        return found;
    };
    const TestBundle extra{bar};
    bar.add(extra.path);
    EXPECT_TRUE(announces("MenuExtraLoaded test.extra"));
    bar.remove(kTestExtra);
    EXPECT_TRUE(announces("MenuExtraUnloaded test.extra"));
    extra.replaceInInfo(kFaultless, "ReturnsNull");
    bar.add(extra.path);
    EXPECT_TRUE(
        announces("MenuExtraRefused " + extra.path.string() + " initWithBundle returned null"));
    bar.add(HALVEX_MENU_CRACKER);
    EXPECT_TRUE(announces("MenuExtraRefused " HALVEX_MENU_CRACKER " it is not in " +
                          extra.path.parent_path().string()));
}

TEST_F(BarItems, ReportAClickThatHasNoEffect) {
    const TestBundle extra{bar, "ThrowsWhenClicked"};
    bar.start({HALVEX_MENU_CRACKER, QString::fromStdString(extra.path)});
    const std::pair<const char*, const char*> cases[] = {
        {"no.such.item", "no.such.item: the menu extra is not loaded"},
        {kCracker, "net.sourceforge.menucracker: the menu extra has no menu"},
        {kTestExtra, "test.extra: the menu extra raised an exception; see the bar's log"},
        {kOwnClock, ""},
        {kOwnClock, ""}, // closes the menu
    };
    for (const auto& [identifier, reason] : cases)
        EXPECT_EQ(client.click(identifier, {}).reason, reason);
}

TEST_F(BarItems, AreDrawnSeparately) {
    const std::string file = bar.home() / "item.png";
    EXPECT_EQ(client.snapshotItem(kOwnClock, file).value, true);
    const QImage picture(QString::fromStdString(file));
    EXPECT_EQ(picture.height(), 22);
    EXPECT_NEAR(picture.width(), client.items().value->at(0).width, 17) << "with its padding";
    EXPECT_EQ(client.snapshotItem("no.such.item", file).reason,
              "no.such.item: the menu extra is not loaded");
}

} // namespace
