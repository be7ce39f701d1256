#include "tests/desktop/support/BarProcess.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QElapsedTimer>
#include <QThread>
#include <QUrl>

#include <stdexcept>
#include <utility>

namespace test {
namespace {

constexpr int kLimit = 5000; // milliseconds; a sanitized bar on a busy machine is slow

} // namespace

PrivateBus::PrivateBus() {
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
    daemon_.kill();
    daemon_.waitForFinished(kLimit);
}

BarProcess::BarProcess(const QStringList& arguments, const Settings& settings)
    : BarProcess(std::make_shared<PrivateBus>(), arguments, settings) {}

BarProcess::BarProcess(std::shared_ptr<PrivateBus> bus, const QStringList& arguments,
                       const Settings& settings)
    : bus_(std::move(bus)) {
    environment_ = QProcessEnvironment::systemEnvironment();
    environment_.insert("HOME", QString::fromStdString(folder_.file("home")));
    environment_.insert("XDG_RUNTIME_DIR", QString::fromStdString(folder_.path()));
    environment_.insert("DBUS_SESSION_BUS_ADDRESS", bus_->address());
    environment_.insert("QT_QPA_PLATFORM", "offscreen");
    for (const auto& [name, value] : settings)
        environment_.insert(name, value);
    std::filesystem::create_directory(folder_.path() / "home");
    process_.setProcessEnvironment(environment_);
    process_.setProcessChannelMode(QProcess::MergedChannels);
    process_.start(HALVEX_MENUBAR, arguments);
    process_.waitForStarted(kLimit);
    if (!eventually([this] { return !call("ListMenuExtras").isEmpty(); }))
        throw std::runtime_error("the bar does not answer: " + log());
}

BarProcess::~BarProcess() {
    if (isRunning())
        stop();
}

int BarProcess::secondBar() {
    QProcess second;
    second.setProcessEnvironment(environment_);
    second.setProcessChannelMode(QProcess::MergedChannels);
    second.start(HALVEX_MENUBAR, QStringList());
    second.waitForFinished(kLimit);
    log_ += second.readAll().toStdString();
    return second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -1;
}

int BarProcess::stop() {
    process_.terminate();
    const bool ended = process_.waitForFinished(4 * kLimit);
    log();
    return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QVariantList BarProcess::call(const QString& member, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall("com.quorvanesoftware.MenuBar",
                                                  "/com/quorvanesoftware/MenuBar",
                                                  "com.quorvanesoftware.MenuBar1", member);
    message.setArguments(arguments);
    const auto reply = bus_->connection().call(message, QDBus::Block, 2 * kLimit);
    return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
}

std::uint32_t BarProcess::reference(const QString& identifier) {
    const auto answer = call("GetMenuExtra", {identifier});
    const bool loaded = answer.size() == 2 && answer.at(0).toInt() == 0;
    return loaded ? answer.at(1).toUInt() : 0;
}

int BarProcess::add(const std::string& bundle, int position) {
    const auto url = QUrl::fromLocalFile(QString::fromStdString(bundle)).toString();
    return call("AddMenuExtra", {url, position, 0, 0, 0, 0}).value(0, -999).toInt();
}

bool BarProcess::click(const QString& identifier, std::uint32_t flags, int count, int button) {
    return call("Click", {identifier, flags, count, button}).value(0).toBool();
}

std::vector<std::string> BarProcess::identifiers() {
    std::vector<std::string> result;
    const auto rows = call("ListMenuExtras").value(0).value<QDBusArgument>();
    rows.beginArray();
    while (!rows.atEnd()) {
        QString identifier, path;
        int position = 0;
        double width = 0;
        rows.beginStructure();
        rows >> identifier >> path >> position >> width;
        rows.endStructure();
        result.push_back(identifier.toStdString());
    }
    return result;
}

QString BarProcess::introspection() {
    const auto message = QDBusMessage::createMethodCall(
        "com.quorvanesoftware.MenuBar", "/com/quorvanesoftware/MenuBar",
        "org.freedesktop.DBus.Introspectable", "Introspect");
    return bus_->connection().call(message).arguments().value(0).toString();
}

std::string BarProcess::log() {
    if (isRunning())
        process_.waitForReadyRead(1);
    log_ += process_.readAll().toStdString();
    return log_;
}

bool BarProcess::logs(const std::string& part) {
    return eventually([&] { return log().find(part) != std::string::npos; });
}

bool BarProcess::eventually(const std::function<bool()>& condition) {
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

} // namespace test
