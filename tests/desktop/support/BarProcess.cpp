#include "tests/desktop/support/BarProcess.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QElapsedTimer>
#include <QThread>
#include <QUrl>

#include <stdexcept>
#include <utility>

// A connection to a private bus leaks, in the tests only. The bar itself is checked without this.
extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's name
extern "C" const char* __lsan_default_suppressions() { // NOLINT
    return "leak:libQt6DBus\nleak:libdbus-1\n";
}

namespace test {
namespace {

constexpr int kLimit = 5000; // milliseconds; generous: a sanitized bar on a busy machine is slow

QProcessEnvironment environmentWith(const Settings& settings) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [name, value] : settings)
        environment.insert(name, value);
    return environment;
}

} // namespace

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

BarProcess::BarProcess(const QStringList& arguments, const Settings& settings)
    : BarProcess(std::make_shared<PrivateBus>(), arguments, settings) {}

BarProcess::BarProcess(std::shared_ptr<PrivateBus> bus, const QStringList& arguments,
                       const Settings& settings)
    : bus_(std::move(bus)) {
    Settings all{{"HOME", QString::fromStdString(home().string())},
                 {"XDG_RUNTIME_DIR", QString::fromStdString(folder_.path())},
                 {"DBUS_SESSION_BUS_ADDRESS", bus_->address()},
                 {"QT_QPA_PLATFORM", "offscreen"}};
    all.insert(all.end(), settings.begin(), settings.end());
    std::filesystem::create_directory(home());
    process_.setProcessEnvironment(environmentWith(all));
    process_.setProcessChannelMode(QProcess::MergedChannels);
    start(arguments);
}

void BarProcess::start(const QStringList& arguments) {
    launch(arguments);
    if (!eventually([this] { return !call("ListMenuExtras").isEmpty(); }))
        throw std::runtime_error("the bar does not reply: " + log());
}

BarProcess::~BarProcess() {
    stop();
}

void BarProcess::launch(const QStringList& arguments) {
    process_.start(HALVEX_MENUBAR, arguments);
    process_.waitForStarted(kLimit);
}

std::string BarProcess::install(const std::string& bundle) const {
    namespace fs = std::filesystem;
    const fs::path folder = home() / "Library/Application Support/Quorvane Software/Menu Extras";
    const fs::path copy = folder / fs::path(bundle).filename();
    fs::create_directories(folder);
    fs::remove_all(copy);
    fs::copy(bundle, copy, fs::copy_options::recursive);
    return copy.string();
}

int BarProcess::stop() {
    process_.terminate();
    return waitForExit();
}

void BarProcess::kill() {
    process_.kill();
    waitForExit();
}

int BarProcess::waitForExit() {
    process_.waitForFinished(4 * kLimit);
    log();
    const bool ended = process_.state() == QProcess::NotRunning;
    return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

QVariantList BarProcess::call(const QString& member, const QVariantList& arguments,
                              const QString& interface) {
    auto message = QDBusMessage::createMethodCall(
        "com.quorvanesoftware.MenuBar", "/com/quorvanesoftware/MenuBar", interface, member);
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

bool BarProcess::hasLoaded(const QString& identifier) {
    return eventually([&] { return reference(identifier) != 0; });
}

bool BarProcess::loads(const std::string& bundle, const QString& identifier, int position) {
    return add(bundle, position) == 0 && hasLoaded(identifier);
}

int BarProcess::remove(const QString& identifier) {
    return call("RemoveMenuExtra", {reference(identifier), 0}).value(0, -999).toInt();
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

QString BarProcess::snapshot() {
    const auto file = QString::fromStdString(folder_.file("bar.png"));
    return call("Snapshot", {file}).value(0).toBool() ? file : QString();
}

std::string BarProcess::log() {
    if (process_.state() == QProcess::Running)
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
