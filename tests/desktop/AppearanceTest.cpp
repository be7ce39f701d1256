#include "apps/support/ProgramAppearance.h"
#include "tests/desktop/support/FakeService.h"
#include "tests/desktop/support/ProgramProcess.h"

#include <QApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDeadlineTimer>
#include <QPalette>

#include <gmock/gmock.h>

#include <map>

using platform::appearance;
using platform::Color;
using test::eventually;

namespace {

struct Rgb {
    double red = 0, green = 0, blue = 0;
};
QDBusArgument& operator<<(QDBusArgument& argument, const Rgb& color) {
    argument.beginStructure();
    argument << color.red << color.green << color.blue;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, Rgb& color) {
    argument.beginStructure();
    argument >> color.red >> color.green >> color.blue;
    argument.endStructure();
    return argument;
}

/// A settings portal on a private bus.
class ProgramAppearance : public testing::Test {
  protected:
    ProgramAppearance() { qDBusRegisterMetaType<Rgb>(); }
    ~ProgramAppearance() override { QApplication::setPalette(QPalette()); }

    static QVariant wrapped(const QVariant& value) {
        return QVariant::fromValue(QDBusVariant(value));
    }
    void change(const QString& key, const QVariant& value) {
        auto signal =
            QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        signal << "org.freedesktop.appearance" << key << wrapped(value);
        bus.connection().send(signal);
    }
    std::unique_ptr<platform::Watch> count() {
        return appearance().onChange([this] { ++reports; });
    }

    const char* path = "/org/freedesktop/portal/desktop";
    std::map<QString, QVariant> settings{{"color-scheme", 0U}};
    std::vector<QString> reads;
    int reports = 0;
    test::PrivateBus bus;
    test::FakeService portal{
        bus.connection(), "org.freedesktop.portal.Desktop", path, [this](const QDBusMessage& call) {
            const QString key = call.arguments().value(1).toString();
            reads.push_back(key);
            return settings.contains(key) ? wrapped(wrapped(settings[key])) : QVariant();
        }};
};

TEST_F(ProgramAppearance, ReportsEachChangeOfTheDesktopOnce) {
    settings = {{"color-scheme", 1U},
                {"contrast", 1U},
                {"accent-color", QVariant::fromValue(Rgb{0.25, 0.5, 1})}};
    const apps::ProgramAppearance program(apps::Appearance::Desktop, bus.connection());
    EXPECT_TRUE(eventually([] { return appearance().isDark(); }));
    EXPECT_EQ(reads.front(), "color-scheme") << "others are not needed yet";
    auto watch = count();
    EXPECT_TRUE(eventually([] { return appearance().accentColor().has_value(); }));
    EXPECT_EQ(appearance().accentColor(), (Color{0.25, 0.5, 1}));
    EXPECT_TRUE(eventually([] { return appearance().prefersHighContrast(); }));

    EXPECT_TRUE(eventually([this] { return reports > 0; }));
    for (const auto& [key, value, isReported] :
         {std::tuple<QString, QVariant, bool>{"color-scheme", 1U, false},
          {"color-scheme", 2U, true},
          {"contrast", 0U, true},
          {"accent-color", QVariant::fromValue(Rgb{-1, -1, -1}), true},
          {"accent-color", "garbage", false},
          {"color-scheme", 1U, true}}) {
        reports = 0;
        change(key, value);
        EXPECT_TRUE(!isReported || eventually([this] { return reports > 0; })) << key.toStdString();
        for (const QDeadlineTimer end(50); !end.hasExpired();)
            QCoreApplication::processEvents();
        EXPECT_EQ(reports, isReported ? 1 : 0) << key.toStdString();
    }
    EXPECT_TRUE(appearance().isDark());
    EXPECT_EQ(appearance().accentColor(), std::nullopt);
}

TEST_F(ProgramAppearance, HighlightsInTheAccentColourUnlessTheDesktopHasNone) {
    const auto highlightBecomes = [](const QColor& color) {
        return eventually([&] { return QApplication::palette().highlight().color() == color; });
    };
    settings = {{"accent-color", QVariant::fromValue(Rgb{1, 0, 0})}};
    for (const auto scheme : {apps::Appearance::Desktop, apps::Appearance::Dark}) {
        const apps::ProgramAppearance program(scheme, bus.connection());
        const QColor usual = QApplication::palette().highlight().color();
        EXPECT_TRUE(highlightBecomes(Qt::red)) << "though no item asks for it";
        change("color-scheme", 2U);
        change("accent-color", QVariant::fromValue(Rgb{2, 0, 0}));
        EXPECT_TRUE(highlightBecomes(usual));
    }
}

TEST_F(ProgramAppearance, IsThatOfTheOptionWhateverTheDesktopSays) {
    settings["color-scheme"] = 1U;
    {
        const apps::ProgramAppearance program(apps::Appearance::Light, bus.connection());
        const auto watch = count();
        change("color-scheme", 1U);
        change("contrast", 1U);
        EXPECT_TRUE(eventually([] { return appearance().prefersHighContrast(); }));
        EXPECT_FALSE(appearance().isDark());
    }
    const apps::ProgramAppearance program(apps::Appearance::Dark, bus.connection());
    EXPECT_TRUE(appearance().isDark());
}

TEST_F(ProgramAppearance, ReportsAPaletteOfTheDesktopsThemeUntilTheWatchIsDestroyed) {
    std::unique_ptr<platform::Watch> watch;
    {
        const apps::ProgramAppearance program(apps::Appearance::Desktop, bus.connection());
        watch = count();
        QApplication::setPalette(QColor(Qt::black));
        EXPECT_TRUE(eventually([this] { return reports == 1; }));
        watch.reset();
        QApplication::setPalette(QColor(Qt::white));
        QCoreApplication::processEvents();
        EXPECT_EQ(reports, 1);
        watch = count();
    }
    EXPECT_FALSE(appearance().isDark()) << "the default";
    watch.reset(); // after the service
}

} // namespace
