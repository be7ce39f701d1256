#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/XServer.h"

#include <QDBusConnectionInterface>

#include <gtest/gtest.h>

#include <csignal>

using test::eventually;
namespace fs = std::filesystem;

namespace {

constexpr const char* kName = "com.quorvanesoftware.Halvex";

/// The bar with the product's clock on a private X server. Its menu requests the calculator from
/// the background application.
class CalculatorRequest : public testing::Test {
  protected:
    ~CalculatorRequest() override {
        const uint process = processOnBus();
        if (process == 0)
            return;
        kill(static_cast<pid_t>(process), SIGTERM);
        EXPECT_TRUE(eventually([&] { return program(process).empty(); }));
    }
    uint processOnBus() const {
        return halvex.bus->connection().interface()->servicePid(kName).value();
    }
    static fs::path program(uint process) {
        std::error_code ignored; // the process may have exited
        return fs::read_symlink("/proc/" + std::to_string(process) + "/exe", ignored);
    }
    fs::path pane() const { return bar.home() / "Library/PreferencePanes/Halvex Pro.prefPane"; }
    void chooseCalculator() {
        x.clickAt(test::kAtItem);
        EXPECT_TRUE(eventually([this] { return bar.picture().height() > 90; })); // the menu is open
        x.act({"key", "Up", "Up", "Return"}); // the last but one entry
    }
    bool isShown() {
        return eventually([this] { return !halvex.picture().isNull(); });
    }

    test::XServer x;
    test::ProgramProcess halvex{HALVEX_APPLICATION, kName}; // not started by the test
    test::BarProcess bar{{HALVEX_TIME_MENU}, x.settings(), halvex.bus};
};

TEST_F(CalculatorRequest, StartsTheApplicationInTheInstalledPaneOnceAndReusesItsProcess) {
    test::copyBundle(HALVEX_PANE, pane());
    chooseCalculator();
    ASSERT_TRUE(isShown()) << bar.log();
    const uint process = processOnBus();
    EXPECT_EQ(program(process), pane() / "Contents/PlugIns/Halvex.app/Contents/Linux/Halvex");
    x.act({"search", "--onlyvisible", "--name", "^Calculator$", "windowfocus", "key", "ctrl+w"});
    EXPECT_TRUE(eventually([this] { return halvex.picture().isNull(); }));
    x.act({"keyup", "ctrl"}); // xdotool stops before it does that if the window is already closed
    chooseCalculator();
    EXPECT_TRUE(isShown());
    EXPECT_EQ(processOnBus(), process);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST_F(CalculatorRequest, ActivatesTheWindowOfAnApplicationThatRefusesToDoIt) {
    const auto folder = bar.home() / "Halvex.app/Contents";
    fs::create_directories(folder / "Linux");
    fs::copy(HALVEX_PEER, folder / "Linux/Program");
    std::ofstream(folder / "Info.plist") << "<plist><dict><key>CFBundleIdentifier</key>"
                                            "<string>test.Halvex</string></dict></plist>";
    const std::ofstream refusal(bar.home() / "refuses"); // the file is created
    QProcess application;
    application.setProcessEnvironment(
        test::environmentWith({{"HOME", QString::fromStdString(bar.home())},
                               {"LD_LIBRARY_PATH", HALVEX_LIBRARIES},
                               {"DBUS_SESSION_BUS_ADDRESS", bar.bus->address()},
                               {"QT_QPA_PLATFORM", "offscreen"}}));
    application.start(QString::fromStdString(folder / "Linux/Program"), {});
    ASSERT_TRUE(eventually(
        [&] { return bar.bus->connection().interface()->isServiceRegistered("test.Halvex"); }));
    test::copyBundle(HALVEX_PANE, pane());
    const auto window = x.manageWindowOf(static_cast<std::uint32_t>(application.processId()));
    chooseCalculator();
    EXPECT_TRUE(eventually([&] { return x.isAsked("_NET_ACTIVE_WINDOW", window); }));
    EXPECT_TRUE(bar.logs("cannot activate test.Halvex: "));
    application.kill();
    application.waitForFinished();
}

} // namespace
