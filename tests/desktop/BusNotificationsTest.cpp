#include "platform/qt/BusNotifications.h"

#include "platform/BusNames.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Foreground.h"
#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/SpoiltBundle.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"

#include <QCoreApplication>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <thread>

using namespace platform;
using platform::qt::BusNotifications;
using test::BarProcess;
using test::PrivateBus;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

class BusNotificationsTest : public testing::Test {
  protected:
    void SetUp() override {
        expat::install();
        environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
        environment.insert("HOME", QString::fromStdString(folder.path().string()));
        environment.insert("LD_LIBRARY_PATH", HALVEX_LIBRARIES);
        environment.insert("QT_QPA_PLATFORM", "offscreen");
    }
    void observe(const std::string& name) {
        center.addObserver(self, name, [this](const Notification& heardOne) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            heard.push_back(heardOne);
        });
    }
    bool hears(std::size_t count) {
        return BarProcess::eventually([&] { return heard.size() >= count; });
    }
    std::unique_ptr<QProcess> start(const QString& program, const QStringList& arguments) const {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(environment);
        process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process->start(program, arguments);
        return process;
    }
    int request() const {
        const auto ctl = start(HALVEX_CTL, {"background", "request", "Request"});
        return ctl->waitForFinished(60000) ? ctl->exitCode() : -1;
    }
    /// The process identifiers that the application has written to a file.
    std::vector<std::string> written(const char* file, std::size_t count) const {
        std::vector<std::string> lines;
        BarProcess::eventually([&] {
            std::istringstream text(test::contents(folder.path() / file));
            lines.clear();
            for (std::string line; std::getline(text, line);)
                lines.push_back(line);
            return lines.size() >= count;
        });
        return lines;
    }
    /// A pane for this user, with the peer as its background application.
    void installApplication() const {
        const std::string application =
            "Library/PreferencePanes/Halvex Pro.prefPane/Contents/PlugIns/Halvex.app/Contents/";
        folder.write(
            application + "Info.plist",
            "<plist><dict><key>CFBundleExecutable</key><string>Halvex</"
            "string><key>CFBundleIdentifier</key><string>test.Halvex</string></dict></plist>");
        std::filesystem::create_directories(folder.path() / application / "Linux");
        std::filesystem::copy(HALVEX_PEER, folder.path() / application / "Linux/Halvex");
    }

    test::TemporaryFolder folder;
    test::RecordingLog log;
    PrivateBus bus;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::shared_ptr<int> self = std::make_shared<int>();
    std::vector<Notification> heard;
    BusNotifications center{bus.address().toStdString()};
};

TEST_F(BusNotificationsTest, OfSeveralProcessesComeInTheOrderOfEachSender) {
    constexpr int kCount = 300;
    observe("Number");
    const QStringList arguments{"post", "Number", QString::number(kCount)};
    const auto first = start(HALVEX_PEER, arguments);
    const auto second = start(HALVEX_PEER, arguments);
    ASSERT_TRUE(hears(2 * kCount));
    first->waitForFinished();
    second->waitForFinished();
    std::map<std::int64_t, std::vector<std::int64_t>> numbers;
    for (const Notification& one : heard)
        numbers[*one.userInfo.find("sender")->integer()].push_back(
            *one.userInfo.find("number")->integer());
    ASSERT_EQ(numbers.size(), 2U);
    for (const auto& [sender, list] : numbers) {
        EXPECT_THAT(list, SizeIs(kCount)) << sender;
        EXPECT_TRUE(std::ranges::is_sorted(list)) << sender;
    }
}

TEST_F(BusNotificationsTest, CarryTheirObjectAndEveryValueToTheMainThread) {
    const PropertyList::Dictionary userInfo{
        {"z", "ä\n<&"},
        {"a", -5},
        {"real", 0.1},
        {"yes", true},
        {"date", PropertyList::Date{1'700'000'000}},
        {"data", PropertyList::Data{{0, 255}}},
        {"list", PropertyList::Array{PropertyList::Dictionary{{"in", "it"}}}},
    };
    observe("Values");
    std::thread([&] {
        center.post({.name = "Nobody hears this", .object = {}, .userInfo = {}});
        center.post({.name = "Values", .object = "object", .userInfo = userInfo});
        center.post({.name = "Values", .object = {}, .userInfo = {}});
    }).join();
    ASSERT_TRUE(hears(2));
    EXPECT_EQ(heard[0].object, "object");
    EXPECT_EQ(heard[0].userInfo, userInfo);
    EXPECT_EQ(heard[1].object, std::nullopt);
    EXPECT_TRUE(heard[1].userInfo.empty());

    center.removeObserver(self, "Values");
    center.post({.name = "Values", .object = {}, .userInfo = {}});
    observe("Last");
    center.post({.name = "Last", .object = {}, .userInfo = {}});
    ASSERT_TRUE(hears(3));
    EXPECT_EQ(heard.back().name, "Last");
}

TEST_F(BusNotificationsTest, ThatMakeNoSenseAreLoggedAndDoNoHarm) {
    observe("A");
    const auto send = [&](const QVariantList& arguments) {
        auto message = QDBusMessage::createSignal(kNotificationPath, kNotificationInterface,
                                                  kNotificationSignal);
        message.setArguments(arguments);
        bus.connection().send(message);
    };
    send({"A", 5});
    send({"A", "", "<plist><array/></plist>"});
    send({"A", "", "<plist><dict>"});
    center.post({.name = "A", .object = {}, .userInfo = {{"bell", "\a"}}});
    center.post({.name = "A", .object = {}, .userInfo = {}});
    ASSERT_TRUE(hears(1));
    for (const char* reason : {"its signature is \"si\"", "its user information is no dictionary",
                               "notification A is lost: its user information cannot be sent"})
        EXPECT_TRUE(log.contains(reason)) << reason;
    EXPECT_THAT(log.take(), SizeIs(4));
    EXPECT_THAT(heard, SizeIs(1));
}

TEST_F(BusNotificationsTest, AreLostWithoutABusWhichIsLoggedOnce) {
    bus.kill();
    for (int i = 0; i < 3; ++i)
        center.post({.name = "A", .object = {}, .userInfo = {}});
    observe("A");
    EXPECT_THAT(log.take(), ElementsAre("no session bus: notifications reach no other program"));
    EXPECT_TRUE(heard.empty());
}

TEST_F(BusNotificationsTest, ReachAnApplicationThatIsStartedForThemAndLaterTheSameOne) {
    EXPECT_EQ(request(), 1) << "nothing is installed";
    installApplication();
    EXPECT_EQ(request(), 0);
    EXPECT_THAT(written("requests", 1), SizeIs(1));
    EXPECT_EQ(request(), 0);
    const auto both = written("requests", 2);
    ASSERT_THAT(both, SizeIs(2));
    EXPECT_EQ(both[0], both[1]);
    const auto find = start(HALVEX_CTL, {"background", "find"});
    find->waitForFinished();
    const QStringList words = QString(find->readAll()).trimmed().split('\t');
    ASSERT_EQ(words.size(), 2);
    EXPECT_EQ(words[1].toStdString(), both[0]);

    const test::ScopedEnvironment session("DBUS_SESSION_BUS_ADDRESS", bus.address().toStdString());
    platform::qt::bringApplicationToFront(words[0].toULongLong());
    EXPECT_THAT(written("activations", 1), ElementsAre(both[0]));
    center.post({.name = "Quit", .object = {}, .userInfo = {}});
    center.flush();
    EXPECT_TRUE(BarProcess::eventually(
        [&] { return !std::filesystem::exists("/proc/" + both[0] + "/exe"); }));
}

} // namespace
