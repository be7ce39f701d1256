// A program that exchanges distributed notifications with the tests.
//
//   peer post NAME COUNT   Post COUNT numbered notifications.
//   peer                   Act as the background application: announce the launch, then append the
//                          process identifier to $HOME/requests for each "Request" and to
//                          $HOME/activations for each activation, which fails if $HOME/refuses
//                          exists. Exit on "Quit" or with the bus.

#include "platform/Workspace.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/BusNotifications.h"
#include "platform/qt/Desktop.h"
#include "tests/desktop/support/FakeService.h"

#include <QGuiApplication>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

using namespace platform;

namespace {

std::string inHome(const char* file) {
    return std::string(std::getenv("HOME")) + '/' + file;
}

void write(const char* file) {
    std::ofstream(inHome(file), std::ios::app) << getpid() << '\n';
}

int post(const std::string& name, int count) {
    qt::BusNotifications center;
    for (int number = 0; number < count; ++number)
        center.post(
            {.name = name, .object = {}, .userInfo = {{"number", number}, {"sender", getpid()}}});
    center.flush();
    return 0;
}

int beTheApplication() {
    const auto self = std::make_shared<int>();
    DistributedNotificationCenter& center = distributedNotificationCenter();
    center.addObserver(self, "Request", [](const Notification&) { write("requests"); });
    center.addObserver(self, "Quit", [](const Notification&) { QCoreApplication::quit(); });
    auto bus = QDBusConnection::sessionBus();
    bus.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                QCoreApplication::instance(), SLOT(quit()));
    const test::FakeService activation(
        bus, "test.Halvex", "/test/Halvex", [](const QDBusMessage& message) {
            if (message.interface() == "org.freedesktop.Application" &&
                message.signature() == "a{sv}")
                write("activations");
            return std::filesystem::exists(inHome("refuses")) ? QVariant() : QVariant(0);
        });
    announceLaunch("Halvex");
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    expat::install();
    qt::install();
    return argc == 4 ? post(argv[2], std::atoi(argv[3])) : beTheApplication();
}
