#include "tests/desktop/support/WindowProcess.h"

#include <QDBusConnectionInterface>

#include <stdexcept>

namespace test {
namespace {

constexpr int kLimit = 10'000; // milliseconds

} // namespace

WindowProcess::WindowProcess(const char* program, const char* name)
    : program_(program), name_(name), environment_(QProcessEnvironment::systemEnvironment()) {
    environment_.insert("HOME", QString::fromStdString(folder.path().string()));
    environment_.insert("XDG_RUNTIME_DIR", QString::fromStdString(folder.path().string()));
    environment_.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    environment_.insert("QT_QPA_PLATFORM", "offscreen");
    process_.setProcessEnvironment(environment_);
    process_.setProcessChannelMode(QProcess::MergedChannels);
}

WindowProcess::~WindowProcess() {
    process_.kill();
    ends();
}

void WindowProcess::start(const QStringList& arguments) {
    process_.start(program_, arguments);
    process_.waitForStarted(kLimit);
    if (!BarProcess::eventually([this] {
            return bus.connection().interface()->isServiceRegistered(name_).value() || !isRunning();
        }) ||
        !isRunning())
        throw std::runtime_error("the program does not start: " + log());
}

int WindowProcess::startAgain(const QStringList& arguments) {
    return startBeside(program_, arguments);
}

int WindowProcess::startBeside(const QString& program, const QStringList& arguments) {
    return runToItsEnd(program, arguments, environment_);
}

int WindowProcess::runWithoutBus() {
    auto environment = environment_;
    environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    return runToItsEnd(program_, {}, environment);
}

int WindowProcess::runToItsEnd(const QString& program, const QStringList& arguments,
                               const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(kLimit);
    log_ += process.readAll().toStdString();
    return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QDBusMessage WindowProcess::call(const QString& interface, const QString& member,
                                 const QVariantList& arguments) {
    const QString path = '/' + QString(name_).replace('.', '/');
    auto message = QDBusMessage::createMethodCall(name_, path, interface, member);
    message.setArguments(arguments);
    return bus.connection().call(message, QDBus::Block, kLimit);
}

QDBusMessage WindowProcess::ask(const QString& member, const QVariantList& arguments) {
    return call("org.freedesktop.Application", member, arguments + QVariantList{QVariantMap()});
}

QImage WindowProcess::picture() {
    const auto file = QString::fromStdString(folder.file("window.png"));
    const auto reply = call("com.quorvanesoftware.Window1", "Snapshot", {file});
    return reply.arguments().value(0).toBool() ? QImage(file) : QImage();
}

std::string WindowProcess::log() {
    if (isRunning())
        process_.waitForReadyRead(1);
    log_ += process_.readAll().toStdString();
    return log_;
}

bool WindowProcess::logs(const std::string& part) {
    return BarProcess::eventually([&] { return log().find(part) != std::string::npos; });
}

int WindowProcess::stop() {
    process_.terminate();
    return ends() && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

} // namespace test
