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

/// A session bus of the test's own. What it starts by itself has @p settings in its environment.
class PrivateBus {
  public:
    explicit PrivateBus(const Settings& settings = {});
    ~PrivateBus();

    /// Ends the bus before its time.
    void kill();
    const QString& address() const { return address_; }
    QDBusConnection connection() const { return QDBusConnection(name_); }

  private:
    QProcess daemon_;
    QString address_;
    QString name_;
};

/// The real menu bar, as a process of its own with an empty home, on a private bus; offscreen
/// unless the settings name a display.
class BarProcess {
  public:
    /// Waits until the bar answers on the bus.
    explicit BarProcess(const QStringList& arguments = {}, const Settings& settings = {});
    BarProcess(std::shared_ptr<PrivateBus> bus, const QStringList& arguments,
               const Settings& settings = {});
    ~BarProcess();

    /// Copies a bundle into the user's "Menu Extras" folder, in place of one of that name, and
    /// gives the copy's path.
    std::string install(const std::string& bundle) const;
    std::filesystem::path home() const { return folder_.path() / "home"; }

    /// Starts the bar again after its end, with the home that it has had.
    void start(const QStringList& arguments = {});
    /// The same without waiting for it to answer.
    void launch(const QStringList& arguments = {});
    /// Starts another bar on the same bus and gives its exit status.
    int secondBar();
    bool isRunning() const { return process_.state() == QProcess::Running; }
    /// Asks the bar to end; its exit status, or -1 when it crashed or did not end.
    int stop();
    /// Ends the bar without its knowing.
    void kill();
    /// Waits for the bar to end by itself; whether it did.
    bool ends();
    qint64 processId() const { return process_.processId(); }

    // The D-Bus interface; an error reply gives an empty list.
    QVariantList call(const QString& member, const QVariantList& arguments = {});
    std::uint32_t reference(const QString& identifier); ///< 0 when it is not loaded
    int add(const std::string& bundle, int position = 999);
    bool click(const QString& identifier, std::uint32_t flags = 0, int count = 1, int button = 0);
    std::vector<std::string> identifiers(); ///< from right to left
    QString introspection();

    /// All that the bar has logged.
    std::string log();
    bool logs(const std::string& part);
    /// Waits, five seconds at most, for something to become true.
    static bool eventually(const std::function<bool()>& condition);

    const TemporaryFolder& folder() const { return folder_; }

  private:
    TemporaryFolder folder_;
    std::shared_ptr<PrivateBus> bus_;
    QProcessEnvironment environment_;
    QProcess process_;
    std::string log_;
};

} // namespace test
