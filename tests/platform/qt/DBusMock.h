#pragma once

#include "tests/desktop/support/ProgramProcess.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <stdexcept>

namespace test {

/// A system service that python-dbusmock plays on a private bus, in a process of its own.
class DBusMock {
  public:
    /// @p path is the object with the template's methods for tests.
    DBusMock(const PrivateBus& bus, const QString& scenario, QString name, QString path)
        : bus_(bus.connection()), name_(std::move(name)), path_(std::move(path)) {
        process_.setProcessEnvironment(
            environmentWith({{"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}}));
        // Not the python3 in the PATH: the package is Debian's.
        process_.start("/usr/bin/python3", {"-m", "dbusmock", "--template", scenario});
        if (!eventually([this] { return bus_.interface()->isServiceRegistered(name_).value(); }))
            throw std::runtime_error("no dbusmock: " + process_.readAll().toStdString());
    }
    ~DBusMock() { kill(); }

    QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                      const QVariantList& arguments = {}) {
        auto message = QDBusMessage::createMethodCall(name_, path, interface, member);
        message.setArguments(arguments);
        const auto reply = bus_.call(message);
        if (reply.type() == QDBusMessage::ErrorMessage)
            throw std::runtime_error(reply.errorMessage().toStdString());
        return reply;
    }
    /// Calls one of the template's methods for tests. Returns the first value of the reply.
    QString control(const QString& member, const QVariantList& arguments) {
        return call(path_, "org.freedesktop.DBus.Mock", member, arguments)
            .arguments()
            .value(0)
            .toString();
    }
    void emitSignal(const QString& interface, const QString& member, const QString& signature,
                    const QVariantList& arguments) {
        control("EmitSignal", {interface, member, signature, arguments});
    }
    bool wasCalled(const QString& path, const QString& method) {
        const auto calls = call(path, "org.freedesktop.DBus.Mock", "GetMethodCalls", {method})
                               .arguments()
                               .at(0)
                               .value<QDBusArgument>();
        calls.beginArray();
        return !calls.atEnd();
    }
    /// Stops replying, as a service that hangs.
    void suspend() { ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP); }
    void resume() { ::kill(static_cast<pid_t>(process_.processId()), SIGCONT); }
    void kill() {
        process_.kill();
        process_.waitForFinished();
    }

  private:
    QDBusConnection bus_;
    const QString name_, path_;
    QProcess process_;
};

/// Runs the event loop for @p milliseconds.
inline void runFor(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    eventually([&] { return timer.elapsed() >= milliseconds; });
}

/// Like eventually, and checks that no event takes long, as a blocking call would.
inline bool eventuallyWithoutBlocking(const std::function<bool()>& condition) {
    QElapsedTimer sinceLast;
    qint64 longest = 0;
    const bool result = eventually([&] {
        longest = std::max(longest, sinceLast.isValid() ? sinceLast.elapsed() : 0);
        sinceLast.start();
        return condition();
    });
    EXPECT_LT(longest, 1000);
    return result;
}

/// The number of connections to a bus.
inline qsizetype connectionCount(const PrivateBus& bus) {
    const QStringList names = bus.connection().interface()->registeredServiceNames();
    return names.filter(QRegularExpression("^:")).size();
}

} // namespace test
