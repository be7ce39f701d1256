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

/// A session bus of the test's own. What it starts by itself has @p settings in its environment.
class PrivateBus {
  public:
    explicit PrivateBus(const Settings& settings = {});
    ~PrivateBus();

    /// Ends the bus before its time.
    void kill();
    std::string address() const { return address_.toStdString(); }
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

    /// Starts the bar again after its end, with the home that it has had, and waits for its answer.
    void start(const QStringList& arguments = {});
    /// The same without waiting.
    void launch(const QStringList& arguments = {});
    /// Asks the bar to end; its exit status, or -1 when it crashed or did not end.
    int stop();
    /// Ends the bar without its knowing.
    void kill();
    /// Waits for the bar to end by itself; as stop().
    int ends();
    qint64 processId() const { return process_.processId(); }

    // The D-Bus interface; an error reply gives an empty list.
    QVariantList call(const QString& member, const QVariantList& arguments = {},
                      const QString& interface = "com.quorvanesoftware.MenuBar1");
    std::uint32_t reference(const QString& identifier); ///< 0 when it is not loaded
    int add(const std::string& bundle, int position = 999);
    /// Waits until the item is loaded.
    bool loads(const QString& identifier);
    /// Both, with an item that is to load.
    bool has(const std::string& bundle, const QString& identifier, int position = 999);
    int remove(const QString& identifier);
    bool click(const QString& identifier, std::uint32_t flags = 0, int count = 1, int button = 0);
    std::vector<std::string> identifiers(); ///< from right to left
    QString snapshot();                     ///< the file

    /// All that the bar has logged.
    std::string log();
    bool logs(const std::string& part);
    /// Waits, five seconds at most, for something to become true.
    static bool eventually(const std::function<bool()>& condition);

    const TemporaryFolder& folder() const { return folder_; }

  private:
    TemporaryFolder folder_;
    std::shared_ptr<PrivateBus> bus_;
    QProcess process_;
    std::string log_;
};

} // namespace test
