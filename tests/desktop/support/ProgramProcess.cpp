#include "tests/desktop/support/ProgramProcess.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <stdexcept>
#include <utility>

// A connection to a private bus leaks, in the tests only. The programs are checked without this.
extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's name
extern "C" const char* __lsan_default_suppressions() { // NOLINT
    return "leak:libQt6DBus\nleak:libdbus-1\n";
}

namespace test {
namespace {

constexpr int kLimit = 5000; // milliseconds; generous: a sanitized bar on a busy machine is slow

int exitStatus(const QProcess& process) {
    const bool exited = process.state() == QProcess::NotRunning;
    return exited && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

} // namespace

QProcessEnvironment environmentWith(const Settings& settings, QProcessEnvironment environment) {
    for (const auto& [name, value] : settings)
        environment.insert(name, value);
    return environment;
}

bool eventually(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kLimit)
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
    return true;
}

std::string copyBundle(const std::filesystem::path& bundle, const std::filesystem::path& to) {
    std::filesystem::remove_all(to);
    std::filesystem::create_directories(to.parent_path());
    std::filesystem::copy(bundle, to, std::filesystem::copy_options::recursive);
    return to.string();
}

PrivateBus::PrivateBus(const Settings& settings) {
    daemon_.setProcessEnvironment(environmentWith(settings));
    static int count = 0;
    name_ = QString("private-%1").arg(++count);
    daemon_.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    daemon_.waitForReadyRead(kLimit);
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
    if (!QDBusConnection::connectToBus(address_, name_).isConnected())
        throw std::runtime_error("no private session bus");
}

PrivateBus::~PrivateBus() {
    QDBusConnection::disconnectFromBus(name_);
    kill();
}

void PrivateBus::kill() {
    daemon_.kill();
    daemon_.waitForFinished(kLimit);
}

ProgramProcess::ProgramProcess(QString program, QString name, QString interface,
                               std::shared_ptr<PrivateBus> sessionBus, const Settings& settings)
    : bus(std::move(sessionBus)), program_(std::move(program)), name_(std::move(name)),
      interface_(std::move(interface)) {
    Settings all{{"HOME", QString::fromStdString(home())},
                 {"XDG_RUNTIME_DIR", QString::fromStdString(folder_.path())},
                 {"DBUS_SESSION_BUS_ADDRESS", bus->address()},
                 {"QT_QPA_PLATFORM", "offscreen"}};
    all.insert(all.end(), settings.begin(), settings.end());
    std::filesystem::create_directory(home());
    process_.setProcessEnvironment(environmentWith(all));
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.setStandardOutputFile(log_, QIODevice::Append);
}

void ProgramProcess::start(const QStringList& arguments) {
    stop();
    launch(arguments);
    if (!eventually([this] { return !call("Snapshot", {picture_}).isEmpty(); }))
        throw std::runtime_error("the program does not answer: " + log());
}

int ProgramProcess::run(const QStringList& arguments, const QString& program,
                        const Settings& changes) {
    QProcess process;
    process.setProcessEnvironment(environmentWith(changes, process_.processEnvironment()));
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(log_, QIODevice::Append);
    process.start(program.isEmpty() ? program_ : program, arguments);
    process.waitForFinished(2 * kLimit);
    return exitStatus(process);
}

int ProgramProcess::stop() {
    process_.terminate();
    return waitForExit();
}

void ProgramProcess::kill() {
    process_.kill();
    waitForExit();
}

int ProgramProcess::waitForExit() {
    process_.waitForFinished(4 * kLimit);
    return exitStatus(process_);
}

QVariantList ProgramProcess::call(const QString& member, const QVariantList& arguments) const {
    const auto reply = send(interface_, member, arguments);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
}

std::string ProgramProcess::request(const QString& member, const QVariantList& arguments) const {
    return send("org.freedesktop.Application", member, arguments + QVariantList{QVariantMap()})
        .errorMessage()
        .toStdString();
}

void ProgramProcess::post(const QString& member, const QVariantList& arguments) const {
    bus->connection().send(message(interface_, member, arguments));
}

QDBusMessage ProgramProcess::send(const QString& interface, const QString& member,
                                  const QVariantList& arguments) const {
    return bus->connection().call(message(interface, member, arguments), QDBus::Block, 2 * kLimit);
}

QDBusMessage ProgramProcess::message(const QString& interface, const QString& member,
                                     const QVariantList& arguments) const {
    const QString path = '/' + QString(name_).replace('.', '/');
    auto message = QDBusMessage::createMethodCall(name_, path, interface, member);
    message.setArguments(arguments);
    return message;
}

QImage ProgramProcess::picture() const {
    return call("Snapshot", {picture_}).value(0).toBool() ? QImage(picture_) : QImage();
}

std::string ProgramProcess::log() const {
    return contents(log_.toStdString());
}

bool ProgramProcess::logs(const std::string& part) const {
    return eventually([&] { return log().find(part) != std::string::npos; });
}

} // namespace test
