#pragma once

#include "tests/support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace test {

using Settings = std::vector<std::pair<QString, QString>>; ///< of the environment

constexpr const char* kOwnClock = "com.apple.menuextra.clock";
constexpr const char* kTestExtra = "test.extra";

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

/// The real menu bar in a process with an empty home folder, on a private bus, and offscreen unless
/// the settings name a display.
class BarProcess {
  public:
    /// Starts the bar and waits until it answers on the bus.
    explicit BarProcess(const QStringList& arguments = {}, const Settings& settings = {});
    BarProcess(std::shared_ptr<PrivateBus> bus, const QStringList& arguments,
               const Settings& settings = {});
    ~BarProcess();

    /// Copies a bundle into the user's "Menu Extras" folder, replacing one of that name, and
    /// returns the copy's path.
    std::string install(const std::string& bundle) const;
    std::filesystem::path home() const { return folder_.path() / "home"; }

    /// Starts the bar again with the same home folder and waits until it answers.
    void start(const QStringList& arguments = {});
    /// Like start, without waiting.
    void launch(const QStringList& arguments = {});
    /// Terminates the bar. Returns its exit status, or -1 if it crashed or did not exit.
    int stop();
    void kill();
    /// Waits for the bar to exit on its own. Returns the same as stop().
    int waitForExit();
    qint64 processId() const { return process_.processId(); }

    // The D-Bus interface.
    /// Returns an empty list for an error reply.
    QVariantList call(const QString& member, const QVariantList& arguments = {},
                      const QString& interface = "com.quorvanesoftware.MenuBar1");
    std::uint32_t reference(const QString& identifier); ///< 0 if not loaded
    int add(const std::string& bundle, int position = 999);
    /// Waits until the item is loaded.
    bool hasLoaded(const QString& identifier);
    /// Adds the bundle and waits until its item is loaded.
    bool loads(const std::string& bundle, const QString& identifier, int position = 999);
    int remove(const QString& identifier);
    bool click(const QString& identifier, std::uint32_t flags = 0, int count = 1, int button = 0);
    std::vector<std::string> identifiers(); ///< rightmost first
    QString snapshot();                     ///< returns the file

    /// Everything that the bar has logged.
    std::string log();
    bool logs(const std::string& part);
    /// Waits for at most five seconds until @p condition returns true.
    static bool eventually(const std::function<bool()>& condition);

    const TemporaryFolder& folder() const { return folder_; }

  private:
    TemporaryFolder folder_;
    std::shared_ptr<PrivateBus> bus_;
    QProcess process_;
    std::string log_;
};

} // namespace test
