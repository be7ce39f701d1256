#pragma once

#include "tests/support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QImage>
#include <QProcess>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

using Settings = std::vector<std::pair<QString, QString>>; ///< of the environment

/// Adds @p settings to an environment, by default this process's.
QProcessEnvironment
environmentWith(const Settings& settings,
                QProcessEnvironment environment = QProcessEnvironment::systemEnvironment());

/// Waits for at most five seconds until @p condition returns true.
bool eventually(const std::function<bool()>& condition);

/// Copies a bundle to the path @p to, replacing what is there, and returns that path.
std::string copyBundle(const std::filesystem::path& bundle, const std::filesystem::path& to);

/// A private session bus. Programs that it starts have @p settings in their environment.
class PrivateBus {
  public:
    explicit PrivateBus(const Settings& settings = {});
    ~PrivateBus();

    void kill();
    const QString& address() const { return address_; }
    std::string addressText() const { return address_.toStdString(); }
    QDBusConnection connection() const { return QDBusConnection(name_); }

  private:
    QProcess daemon_;
    QString address_;
    QString name_;
};

/// One of the product's programs in a process with an empty home folder, on a private bus, and
/// offscreen unless the settings name a display.
class ProgramProcess {
  public:
    /// @p name is the program's bus name, @p interface has its method Snapshot. Does not start the
    /// program.
    ProgramProcess(QString program, QString name,
                   QString interface = "com.quorvanesoftware.Window1",
                   std::shared_ptr<PrivateBus> sessionBus = std::make_shared<PrivateBus>(),
                   const Settings& settings = {});
    /// Terminates the program.
    ~ProgramProcess() { stop(); }

    /// Starts the program and waits until it answers on the bus. Terminates it first if it is
    /// running; its home folder keeps its contents.
    void start(const QStringList& arguments = {});
    /// Starts the program without waiting.
    void launch(const QStringList& arguments = {}) { process_.start(program_, arguments); }
    /// Runs another instance, or another program, in the same environment with @p changes. Returns
    /// its exit status, or -1 if it crashes or does not exit.
    int run(const QStringList& arguments = {}, const QString& program = {},
            const Settings& changes = {});
    /// Terminates the program. Returns the same as waitForExit.
    int stop();
    void kill();
    /// Waits for the program to exit. Returns its exit status, or -1 if it crashed or did not exit.
    int waitForExit();
    bool isRunning() const { return process_.state() == QProcess::Running; }
    qint64 processId() const { return process_.processId(); }

    /// Calls a method. Returns an empty list for an error reply.
    QVariantList call(const QString& member, const QVariantList& arguments = {}) const;
    /// Calls a method without waiting for its reply.
    void post(const QString& member, const QVariantList& arguments = {}) const;
    /// Calls a method of org.freedesktop.Application with empty platform data. Returns the error
    /// message, or an empty string on success.
    std::string request(const QString& member, const QVariantList& arguments = {}) const;
    /// Returns what the program shows, or a null image if that is nothing.
    QImage picture() const;

    /// Returns everything that the program, those of run and those that they started have written.
    std::string log() const;
    bool logs(const std::string& part) const;

    std::filesystem::path home() const { return folder_.path() / "home"; }

    const std::shared_ptr<PrivateBus> bus;

  private:
    QDBusMessage send(const QString& interface, const QString& member,
                      const QVariantList& arguments) const;
    QDBusMessage message(const QString& interface, const QString& member,
                         const QVariantList& arguments) const;

    TemporaryFolder folder_;
    const QString program_, name_, interface_;
    const QString picture_ = QString::fromStdString(folder_.file("picture.png"));
    const QString log_ = QString::fromStdString(folder_.file("log"));
    QProcess process_;
};

} // namespace test
