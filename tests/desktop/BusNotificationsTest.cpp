#include "platform/qt/BusNotifications.h"

#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/BusNames.h"
#include "platform/qt/Foreground.h"
#include "tests/desktop/support/ProgramProcess.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <thread>

using namespace platform;
using platform::qt::BusNotifications;
using test::PrivateBus;
using testing::ElementsAre;
using testing::Ne;
using testing::SizeIs;

namespace {

bool isRunning(const std::string& process) {
    return std::filesystem::exists("/proc/" + process + "/exe");
}

class BusNotificationsTest : public testing::Test {
  protected:
    void SetUp() override { expat::install(); }
    /// Kills the applications, which later tests would find.
    void TearDown() override {
        for (const std::string& process : written("requests", 0))
            end(process);
    }
    static void end(const std::string& process) {
        kill(std::stoi(process), SIGKILL);
        EXPECT_TRUE(test::eventually([&] { return !isRunning(process); }));
    }
    void observe(const std::string& name) {
        center.addObserver(self, name, [this](const Notification& notification) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            received.push_back(notification);
        });
    }
    bool receives(std::size_t count) {
        return test::eventually([&] { return received.size() >= count; });
    }
    void post(const std::string& name, const PropertyList::Dictionary& userInfo = {}) {
        center.post({.name = name, .object = {}, .userInfo = userInfo});
    }
    static int request() {
        return QProcess::execute(HALVEX_CTL, {"background", "request", "Request"});
    }
    /// Returns the application's serial number and process identifier.
    static QStringList find() {
        QProcess ctl;
        ctl.start(HALVEX_CTL, {"background", "find"});
        ctl.waitForFinished();
        return QString(ctl.readAll()).trimmed().split('\t');
    }
    /// Returns the process identifiers in a file of the application, once there are @p count.
    std::vector<std::string> written(const char* file, std::size_t count) const {
        std::vector<std::string> processes;
        test::eventually([&] {
            std::ifstream stream(folder.path() / file);
            processes.assign(std::istream_iterator<std::string>(stream), {});
            return processes.size() >= count;
        });
        return processes;
    }
    /// Installs a pane for this user, with the peer as its background application.
    void installApplication() const {
        const auto program = installedProgram();
        folder.write(kContents + "Info.plist",
                     "<plist><dict><key>CFBundleExecutable</key><string>Halvex</string>"
                     "<key>CFBundleIdentifier</key><string>test.Halvex</string></dict></plist>");
        std::filesystem::create_directory(program.parent_path());
        std::filesystem::copy(HALVEX_PEER, program);
    }
    std::filesystem::path installedProgram() const {
        return folder.path() / kContents / "Linux/Halvex";
    }

    inline static const std::string kContents =
        "Library/PreferencePanes/Halvex Pro.prefPane/Contents/PlugIns/Halvex.app/Contents/";

    test::TemporaryFolder folder;
    test::RecordingLog log;
    PrivateBus bus;
    const test::ScopedEnvironment session{"DBUS_SESSION_BUS_ADDRESS", bus.addressText()};
    const test::ScopedEnvironment home{"HOME", folder.path().string()};
    const test::ScopedEnvironment libraries{"LD_LIBRARY_PATH", HALVEX_LIBRARIES};
    const test::ScopedEnvironment display{"QT_QPA_PLATFORM", "offscreen"};
    std::shared_ptr<int> self = std::make_shared<int>();
    std::vector<Notification> received;
    BusNotifications center{bus.addressText()};
};

TEST_F(BusNotificationsTest, DeliversThePostsOfEachProcessInTheirOrder) {
    constexpr int kCount = 300;
    observe("Number");
    QProcess first, second;
    for (QProcess* peer : {&first, &second})
        peer->start(HALVEX_PEER, {"post", "Number", QString::number(kCount)});
    ASSERT_TRUE(receives(2 * kCount));
    for (QProcess* peer : {&first, &second})
        peer->waitForFinished();
    std::map<std::int64_t, std::vector<std::int64_t>> numbers;
    for (const Notification& one : received)
        numbers[*one.userInfo.find("sender")->integer()].push_back(
            *one.userInfo.find("number")->integer());
    ASSERT_EQ(numbers.size(), 2U);
    for (const auto& [sender, list] : numbers) {
        EXPECT_THAT(list, SizeIs(kCount)) << sender;
        EXPECT_TRUE(std::ranges::is_sorted(list)) << sender;
    }
}

TEST_F(BusNotificationsTest, DeliversObjectsAndAllKindsOfValuesOnTheMainThread) {
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
        post("Not observed");
        center.post({.name = "Values", .object = "object", .userInfo = userInfo});
        post("Values");
    }).join();
    ASSERT_TRUE(receives(2));
    EXPECT_EQ(received[0].object, "object");
    EXPECT_EQ(received[0].userInfo, userInfo);
    EXPECT_EQ(received[1].object, std::nullopt);
    EXPECT_TRUE(received[1].userInfo.empty());

    center.removeObserver(self, "Values");
    post("Values");
    observe("Last");
    post("Last");
    ASSERT_TRUE(receives(3));
    EXPECT_EQ(received.back().name, "Last");
}

TEST_F(BusNotificationsTest, LogsAndIgnoresMalformedNotifications) {
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
    const QString large(16 << 20, ' ');
    send({"A", "", "<plist><dict/></plist>" + large});
    send({"A", large + "x", "<plist><dict/></plist>"});
    post("A", {{"bell", "\a"}});
    send({"A", "", "<plist><dict/></plist>"});
    ASSERT_TRUE(receives(1));
    for (const char* reason :
         {"its signature is \"si\"", "it exceeds 16 MiB",
          "its user information is not a dictionary",
          "notification A not sent: its user information is not valid XML or exceeds 16 MiB"})
        EXPECT_TRUE(log.contains(reason)) << reason;
    EXPECT_THAT(log.take(), SizeIs(6));
    EXPECT_THAT(received, SizeIs(1));
}

TEST_F(BusNotificationsTest, LogsOnceThatThereIsNoBus) {
    bus.kill();
    for (int i = 0; i < 3; ++i)
        post("A");
    observe("A");
    EXPECT_THAT(log.take(),
                ElementsAre("notifications do not reach other programs: there is no session bus"));
    EXPECT_TRUE(received.empty());
}

TEST_F(BusNotificationsTest, ReachesAnApplicationThatTheFirstRequestStarts) {
    EXPECT_EQ(request(), 1) << "no application is installed";
    installApplication();
    EXPECT_EQ(request(), 0);
    EXPECT_THAT(written("requests", 1), SizeIs(1));
    EXPECT_EQ(request(), 0);
    const auto both = written("requests", 2);
    ASSERT_THAT(both, SizeIs(2));
    EXPECT_EQ(both[0], both[1]);
    const QStringList words = find();
    ASSERT_EQ(words.size(), 2);
    EXPECT_EQ(words[1].toStdString(), both[0]);

    platform::qt::bringApplicationToFront(words[0].toULongLong());
    EXPECT_THAT(written("activations", 1), ElementsAre(both[0]));
    post("Quit");
    center.flush();
    EXPECT_TRUE(test::eventually([&] { return !isRunning(both[0]); }));
}

TEST_F(BusNotificationsTest, RequestsPassByProcessesThatDoNotOwnTheApplicationsNameOnThisBus) {
    installApplication();
    const auto program = folder.path() / "Other.app/Contents/Linux/Halvex";
    std::filesystem::create_directories(program.parent_path());
    for (const auto& copy : {program, folder.path() / "Halvex"})
        std::filesystem::copy("/bin/sleep", copy);
    folder.write("Other.app/Contents/Info.plist",
                 "<plist><dict><key>CFBundleName</key><string>Halvex</string>"
                 "<key>CFBundleIdentifier</key><string>test.unregistered</string></dict></plist>");
    QProcess unbundled, unregistered, elsewhere;
    unbundled.start(folder.file("Halvex").c_str(), {"60"});
    unregistered.start(program.c_str(), {"60"});
    const PrivateBus other;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", other.address());
    elsewhere.setProcessEnvironment(environment);
    elsewhere.start(installedProgram().c_str(), {});
    EXPECT_TRUE(test::eventually(
        [&] { return other.connection().interface()->isServiceRegistered("test.Halvex"); }));
    EXPECT_EQ(find().size(), 1) << "none is found";
    EXPECT_EQ(request(), 0);
    const auto reached = written("requests", 1);
    ASSERT_THAT(reached, SizeIs(1));
    EXPECT_NE(std::to_string(elsewhere.processId()), reached[0]);
    EXPECT_EQ(find().value(1).toStdString(), reached[0]);
    for (QProcess* process : {&unbundled, &unregistered, &elsewhere}) {
        process->kill();
        process->waitForFinished();
    }
}

TEST_F(BusNotificationsTest, ReceivesWhatACommandPostsJustBeforeItExits) {
    constexpr int kCount = 32;
    installApplication();
    EXPECT_EQ(request(), 0);
    observe("Request");
    std::vector<std::unique_ptr<QProcess>> commands;
    for (int i = 0; i < kCount; ++i) {
        commands.push_back(std::make_unique<QProcess>());
        commands.back()->start(HALVEX_CTL, {"background", "request", "Request"});
    }
    for (const auto& command : commands)
        EXPECT_TRUE(command->waitForFinished());
    EXPECT_TRUE(receives(kCount)) << received.size();
}

TEST_F(BusNotificationsTest, RequestsDoNotWaitForAHangingApplicationOrReachAKilledOne) {
    installApplication();
    request();
    const std::string first = written("requests", 1).at(0);
    kill(std::stoi(first), SIGSTOP);
    const auto serialNumber = find().value(0).toULongLong();
    QElapsedTimer timer;
    timer.start();
    platform::qt::bringApplicationToFront(serialNumber);
    EXPECT_EQ(request(), 0);
    EXPECT_LT(timer.elapsed(), 3000);
    EXPECT_THAT(written("requests", 1), SizeIs(1));
    kill(std::stoi(first), SIGCONT);
    EXPECT_THAT(written("requests", 2), ElementsAre(first, first));

    kill(std::stoi(first), SIGSTOP);
    EXPECT_EQ(request(), 0);
    end(first); // the request is lost
    EXPECT_EQ(request(), 0);
    EXPECT_THAT(written("requests", 3), ElementsAre(first, first, Ne(first)));
}

} // namespace
