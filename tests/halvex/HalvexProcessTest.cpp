#include "platform/qt/BusNames.h"
#include "tests/desktop/support/WindowProcess.h"

#include <QDBusConnection>
#include <QThread>

#include <gtest/gtest.h>

using test::BarProcess;
using test::WindowProcess;

namespace {

constexpr const char* kShowCalculator = "HalvexShowCalculatorNotification";

/// What the program posts.
class Listener : public QObject {
    Q_OBJECT

  public:
    explicit Listener(QDBusConnection bus) {
        bus.connect("", platform::kNotificationPath, platform::kNotificationInterface,
                    platform::kNotificationSignal, this, SLOT(heard(QString, QString, QString)));
    }
    QStringList posts;

  public slots:
    void heard(const QString& name, const QString&, const QString& userInfo) {
        posts.append(name + '|' + userInfo);
    }
};

class Halvex : public testing::Test {
  protected:
    void post(const QString& name) {
        auto signal = QDBusMessage::createSignal(platform::kNotificationPath,
                                                 platform::kNotificationInterface,
                                                 platform::kNotificationSignal);
        signal << name << ""
               << "<plist version=\"1.0\"><dict/></plist>";
        halvex.bus.connection().send(signal);
    }
    bool isShown() { return !halvex.picture().isNull(); }

    WindowProcess halvex{HALVEX_APPLICATION, "com.quorvanesoftware.Halvex"};
};

TEST_F(Halvex, AnnouncesItselfAndShowsTheCalculatorWhenItIsNotified) {
    const Listener listener(halvex.bus.connection());
    halvex.start();
    ASSERT_TRUE(BarProcess::eventually([&] { return !listener.posts.isEmpty(); }));
    EXPECT_TRUE(listener.posts[0].startsWith("NSWorkspaceDidLaunchApplicationNotification|"));
    EXPECT_TRUE(listener.posts[0].contains("<string>Halvex</string>"));
    EXPECT_FALSE(isShown());
    post("HalvexShowSomethingElseNotification");
    QThread::msleep(300);
    EXPECT_FALSE(isShown());
    post(kShowCalculator);
    ASSERT_TRUE(BarProcess::eventually([this] { return isShown(); }));
    const QImage picture = halvex.picture();
    EXPECT_GT(picture.height(), picture.width()) << "a calculator stands upright";
    EXPECT_NE(picture.pixel(2, 2), picture.pixel(picture.width() - 30, picture.height() - 20));
    EXPECT_EQ(halvex.stop(), 0) << halvex.log();
}

TEST_F(Halvex, IsOneInEachSessionThatAnswersAsAnApplicationAndSaysWhatItCannotDo) {
    halvex.start();
    EXPECT_EQ(halvex.startAgain(), 0);
    EXPECT_EQ(halvex.ask("Activate").type(), QDBusMessage::ReplyMessage);
    const auto opened = halvex.ask("Open", {QStringList("file:///etc/hosts")});
    EXPECT_EQ(opened.errorMessage(), "Halvex opens no files");
    const auto unknown = halvex.ask("ActivateAction", {"dance", QVariantList()});
    EXPECT_EQ(unknown.errorMessage(), "Halvex has no action \"dance\"");
    EXPECT_FALSE(isShown()) << "there was no window to bring to the front";
    EXPECT_EQ(halvex.ask("ActivateAction", {"calculator", QVariantList()}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_TRUE(isShown());
    EXPECT_EQ(halvex.startAgain(), 0);
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(halvex.isRunning());
}

TEST_F(Halvex, EndsWithItsSessionAndDoesNotStartWithoutOne) {
    halvex.start();
    halvex.bus.kill();
    EXPECT_TRUE(halvex.ends());
    EXPECT_TRUE(halvex.logs("the session bus has gone, and com.quorvanesoftware.Halvex with it"));
    EXPECT_EQ(halvex.runWithoutBus(), 1);
    EXPECT_TRUE(halvex.logs("no session bus: nobody can ask anything of Halvex"));
}

} // namespace

#include "HalvexProcessTest.moc"
