#include "menuextras/ExportedIdentifiers.h"
#include "platform/Event.h"
#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/SpoiltBundle.h"

#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::BarProcess;
using testing::ElementsAre;

namespace {

constexpr const char* kOwnClock = "com.apple.menuextra.clock";
constexpr const char* kTestExtra = "test.extra";

QImage picture(BarProcess& bar) {
    const auto file = QString::fromStdString(bar.folder().file("bar.png"));
    EXPECT_TRUE(bar.call("Snapshot", {file}).value(0).toBool());
    return QImage(file);
}

TEST(Bar, StartsWithItsOwnClockAndEndsCleanly) {
    BarProcess bar;
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_EQ(picture(bar).height(), 22);
    EXPECT_EQ(bar.secondBar(), 1);
    EXPECT_TRUE(bar.logs("another menu bar is running on this session bus"));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(Bar, EndsWithItsSessionBus) {
    const auto bus = std::make_shared<test::PrivateBus>();
    BarProcess bar(bus, {});
    bus->kill();
    EXPECT_TRUE(bar.ends());
    EXPECT_TRUE(bar.logs("the session bus has gone, and the menu bar with it"));
}

TEST(Bar, SpeaksTheInterfaceThatItPromises) {
    BarProcess bar;
    const std::string xml = bar.introspection().toStdString();
    for (const char* part :
         {"interface name=\"com.quorvanesoftware.MenuBar1\"", "method name=\"GetMenuExtra\"",
          "method name=\"AddMenuExtra\"", "method name=\"RemoveMenuExtra\"",
          "type=\"a(ssid)\" direction=\"out\"", "method name=\"Click\"", "method name=\"Snapshot\"",
          "signal name=\"MenuExtraLoaded\"", "signal name=\"MenuExtraUnloaded\""})
        EXPECT_NE(xml.find(part), std::string::npos) << part << " in " << xml;
}

TEST(Bar, ShowsTheProductsClockAndOpensItsMenuOnAClick) {
    BarProcess bar({HALVEX_TIME_MENU});
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, HalvexMenuID));
    const int closed = picture(bar).height();
    EXPECT_FALSE(bar.click(HalvexMenuID)) << "the menu opens: the click was not consumed";
    EXPECT_GT(picture(bar).height(), closed + 30);
    EXPECT_FALSE(bar.click(kOwnClock)) << "another menu takes its place";
    EXPECT_GT(picture(bar).height(), closed + 30);
    EXPECT_FALSE(bar.click(kOwnClock)) << "and closes again";
    EXPECT_EQ(picture(bar).height(), closed);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(Bar, TellsAnItemWhichClickItWasAndTheCallerWhetherItWasConsumed) {
    BarProcess bar({HALVEX_TEST_EXTRA});
    struct Case {
        std::uint32_t flags;
        int count, button;
        const char* line;
        bool consumed;
    };
    const Case cases[] = {
        {platform::kShiftKeyMask, 1, 0, "click shift 1", true},
        {platform::kOptionKeyMask, 2, 0, "click option 2", false},
        {platform::kControlKeyMask, 3, 0, "click control 3", false},
        {0, 4, 3, "click control 4", false},
        {0, 5, 1, "click plain 5", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(bar.click(kTestExtra, c.flags, c.count, c.button), c.consumed) << c.line;
        EXPECT_TRUE(bar.logs(c.line)) << bar.log();
    }
}

TEST(Bar, LoadsAndUnloadsWhileItRuns) {
    BarProcess bar;
    const std::string bundle = bar.install(HALVEX_TEST_EXTRA);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(bar.add(bundle, 0), 0);
        EXPECT_TRUE(BarProcess::eventually([&] { return bar.reference(kTestExtra) != 0; }));
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra));
        bar.click(kTestExtra); // its menu is open when it goes
        EXPECT_EQ(bar.call("RemoveMenuExtra", {bar.reference(kTestExtra), 0}).value(0), 0);
        EXPECT_EQ(bar.reference(kTestExtra), 0U);
    }
    EXPECT_TRUE(bar.logs("leaving"));
    EXPECT_EQ(picture(bar).height(), 22);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(Bar, LetsAnItemTakeItselfAndOthersOut) {
    BarProcess bar({HALVEX_TIME_MENU});
    const test::SpoiltBundle bundle(bar);
    bundle.useClass("LeavesWhenClicked");
    EXPECT_EQ(bar.add(bundle.path.string()), 0);
    EXPECT_TRUE(BarProcess::eventually([&] { return bar.reference(kTestExtra) != 0; }));
    EXPECT_TRUE(bar.click(kTestExtra));
    EXPECT_TRUE(BarProcess::eventually([&] { return bar.identifiers().size() == 1; }));
    EXPECT_THAT(bar.identifiers(), ElementsAre(HalvexMenuID));
    EXPECT_TRUE(bar.logs("leaving"));
    EXPECT_EQ(bar.log().find("still held"), std::string::npos);
    bar.add(bundle.path.string());
    EXPECT_TRUE(BarProcess::eventually([&] { return bar.reference(kTestExtra) != 0; }));
    EXPECT_EQ(bar.stop(), 0) << "an item may ask for others to its end: " << bar.log();
}

/// A settings portal that says whether the desktop is dark.
class Portal final : public QDBusVirtualObject {
  public:
    explicit Portal(const test::PrivateBus& bus) : bus_(bus.connection()) {
        bus_.registerVirtualObject(kPath, this);
        bus_.registerService("org.freedesktop.portal.Desktop");
    }
    void change(uint scheme) {
        auto signal = QDBusMessage::createSignal(kPath, kInterface, "SettingChanged");
        signal << kGroup << kKey << QVariant::fromValue(QDBusVariant(scheme));
        bus_.send(signal);
    }
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const bool known = message.arguments() == QVariantList{kGroup, kKey};
        const QVariant dark = QVariant::fromValue(QDBusVariant(1U));
        return known && bus.send(message.createReply(QVariant::fromValue(QDBusVariant(dark))));
    }

  private:
    static constexpr const char* kPath = "/org/freedesktop/portal/desktop";
    static constexpr const char* kInterface = "org.freedesktop.portal.Settings";
    static constexpr const char* kGroup = "org.freedesktop.appearance";
    static constexpr const char* kKey = "color-scheme";
    QDBusConnection bus_;
};

TEST(Bar, IsAsDarkAsTheDesktopWantsIt) {
    const auto bus = std::make_shared<test::PrivateBus>();
    Portal portal(*bus);
    BarProcess bar(bus, {});
    const auto isDark = [&] { return picture(bar).pixelColor(5, 5).lightness() < 128; };
    EXPECT_TRUE(BarProcess::eventually(isDark));
    portal.change(2);
    EXPECT_TRUE(BarProcess::eventually([&] { return !isDark(); }));
    portal.change(1);
    EXPECT_TRUE(BarProcess::eventually(isDark));
}

TEST(Bar, AnswersWrongArgumentsWithAStatusAndALogLineAndChangesNothing) {
    BarProcess bar;
    const auto add = [&](const char* url) {
        return bar.call("AddMenuExtra", {url, 999, 0, 0, 0, 0}).value(0, 0).toInt();
    };
    EXPECT_EQ(add("file:///no/such/folder.menu"), -43);
    EXPECT_EQ(add("http://somewhere/x.menu"), -50);
    EXPECT_EQ(add("/no/url.menu"), -50);
    EXPECT_EQ(add(""), -50);
    EXPECT_NE(bar.call("RemoveMenuExtra", {4711U, 0}).value(0, 0), 0);
    EXPECT_NE(bar.call("RemoveMenuExtra", {0U, 0}).value(0, 0), 0);
    EXPECT_FALSE(bar.click("no.such.item"));
    EXPECT_FALSE(bar.call("Snapshot", {"relative.png"}).value(0, true).toBool());
    EXPECT_FALSE(bar.call("Snapshot", {"/no/such/folder/bar.png"}).value(0, true).toBool());
    for (const char* line :
         {"/no/such/folder.menu", "http://somewhere/x.menu is no file URL", "/no/url.menu",
          "the reference 4711", "no.such.item is not loaded", "relative.png is no absolute path",
          "no picture at /no/such/folder/bar.png"})
        EXPECT_TRUE(bar.logs(line)) << line << " in " << bar.log();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
}

} // namespace
