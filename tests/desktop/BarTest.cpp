#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/FakeService.h"
#include "tests/desktop/support/TestBundle.h"

#include <QDBusVariant>

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;

namespace {

TEST(Bar, IsTheOnlyOneOnItsBusExportsItsInterfaceAndExitsWithTheBus) {
    BarProcess bar;
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_EQ(bar.picture().height(), 22);
    EXPECT_EQ(bar.run(), 1);
    EXPECT_TRUE(bar.logs("another menu bar is running on this session bus"));
    bar.run({"--print-reply", "--dest=com.quorvanesoftware.MenuBar",
             "/com/quorvanesoftware/MenuBar", "org.freedesktop.DBus.Introspectable.Introspect"},
            "dbus-send");
    for (const std::string part :
         {"type=\"a(ssid)\" direction=\"out\"", "type=\"a(sa{sv})\" direction=\"out\"",
          "signal name=\"MenuExtraLoaded\"", "signal name=\"MenuExtraUnloaded\""})
        EXPECT_TRUE(bar.logs(part)) << part;
    bar.bus->kill();
    EXPECT_EQ(bar.waitForExit(), 0) << bar.log();
    EXPECT_TRUE(bar.logs("com.quorvanesoftware.MenuBar quits: the session bus disconnected"));
}

TEST(Bar, OpensAndClosesTheMenuOfAClickedItem) {
    BarProcess bar({HALVEX_TIME_MENU});
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, HalvexMenuID));
    EXPECT_FALSE(bar.click(HalvexMenuID)) << "the click opens the menu";
    EXPECT_GT(bar.picture().height(), 52);
    EXPECT_FALSE(bar.click(kOwnClock)) << "the click replaces the open menu";
    EXPECT_GT(bar.picture().height(), 52);
    EXPECT_FALSE(bar.click(kOwnClock)) << "the click closes the menu";
    EXPECT_EQ(bar.picture().height(), 22);
    const TestBundle bundle(bar, "ReplacesItsViewWhenClicked");
    ASSERT_TRUE(bar.loads(bundle.path, kTestExtra));
    EXPECT_FALSE(bar.click(kTestExtra));
    EXPECT_GT(bar.picture().height(), 52) << "the click opens the menu all the same";
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(Bar, LetsAnItemRemoveItselfAndOthers) {
    BarProcess bar({HALVEX_TIME_MENU});
    const TestBundle bundle(bar, "RemovesItemsWhenClicked");
    EXPECT_TRUE(bar.loads(bundle.path, kTestExtra));
    EXPECT_TRUE(bar.click(kTestExtra));
    EXPECT_TRUE(bar.logs("unloading"));
    EXPECT_TRUE(eventually([&] { return bar.identifiers().size() == 1; }));
    EXPECT_THAT(bar.identifiers(), ElementsAre(HalvexMenuID));
    EXPECT_EQ(bar.log().find("still referenced"), std::string::npos);
    EXPECT_TRUE(bar.loads(bundle.path, kTestExtra));
    EXPECT_EQ(bar.stop(), 0) << "an item may call the bar in willUnload: " << bar.log();
}

TEST(Bar, FollowsTheColourSchemeOfTheDesktop) {
    const char* service = "org.freedesktop.portal.Desktop";
    const char* path = "/org/freedesktop/portal/desktop";
    const QVariantList setting{"org.freedesktop.appearance", "color-scheme"};
    const auto variant = [](uint v) { return QVariant::fromValue(QDBusVariant(v)); };
    const auto bus = std::make_shared<PrivateBus>();
    uint current = 1;
    const auto portal = [&] {
        return std::make_unique<FakeService>(
            bus->connection(), service, path, [&](const QDBusMessage& call) {
                return call.arguments() == setting
                           ? QVariant::fromValue(QDBusVariant(variant(current)))
                           : QVariant();
            });
    };
    auto running = portal();
    BarProcess bar({}, {}, bus);
    const auto becomes = [&](bool dark) {
        return eventually([&] { return (qGray(bar.picture().pixel(5, 5)) < 128) == dark; });
    };
    EXPECT_TRUE(becomes(true));
    for (const uint scheme : {2U, 1U}) {
        auto signal =
            QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        signal.setArguments(setting + QVariantList{variant(scheme)});
        bus->connection().send(signal);
        EXPECT_TRUE(becomes(scheme == 1));
    }
    for (const uint scheme : {2U, 1U}) {
        bus->connection().unregisterService(service);
        bus->connection().unregisterObject(path);
        current = scheme;
        running = portal();
        EXPECT_TRUE(becomes(scheme == 1)) << "the portal has restarted";
    }
}

TEST(Bar, AnswersInvalidArgumentsWithAStatusAndALogLine) {
    BarProcess bar;
    const std::tuple<const char*, QVariantList, QVariant, const char*> cases[] = {
        {"AddMenuExtra", {"file:///no/such.menu", 999, 0, 0, 0, 0}, -43, "/no/such.menu"},
        {"AddMenuExtra", {"http://x/x.menu", 999, 0, 0, 0, 0}, -50, "x.menu is not a file URL"},
        {"AddMenuExtra", {"/no/url.menu", 999, 0, 0, 0, 0}, -50, "/no/url.menu"},
        {"RemoveMenuExtra", {4711U, 0}, -1, "unknown reference 4711"},
        {"RemoveMenuExtra", {0U, 0}, -1, "unknown reference 0"},
        {"Click", {"no.such.item", 0U, 1, 0}, {}, "no.such.item: it is not loaded"},
        {"Snapshot", {"relative.png"}, false, "relative.png is not the absolute path"},
        {"Snapshot", {"/no/such/bar.png"}, false, "cannot write snapshot /no/such/bar.png"},
    };
    for (const auto& [member, arguments, answer, line] : cases) {
        EXPECT_EQ(bar.call(member, arguments).value(0), answer) << line;
        EXPECT_TRUE(bar.logs(line)) << line << " in " << bar.log();
    }
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
}

} // namespace
