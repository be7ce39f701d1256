#include "platform/qt/Desktop.h"

#include "platform/Log.h"
#include "platform/qt/BusLoginSession.h"
#include "platform/qt/BusNotifications.h"
#include "platform/qt/BusProcessList.h"
#include "platform/qt/BusUserNotifications.h"
#include "platform/qt/BusWireless.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/QtMainThread.h"
#include "platform/qt/QtPanelService.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtWorkspace.h"
#include "platform/qt/X11Applications.h"

#include <QApplication>

namespace platform::qt {
namespace {

/// Writes lines to the previous log. Beeps with the desktop's alert sound.
class DesktopLog final : public Log {
  public:
    explicit DesktopLog(Log& lines) : lines_(lines) {}
    void write(std::string_view line) override { lines_.write(line); }
    void beep() override { QApplication::beep(); }

  private:
    Log& lines_;
};

struct Desktop {
    X11Applications applications;
    DesktopLog log{systemLog()};
    BusLoginSession loginSession;
    BusNotifications notifications;
    BusProcessList processes;
    QtGraphics graphics;
    QtMainThread mainThread;
    QtPanelService panels;
    QtPasteboard pasteboard;
    BusUserNotifications userNotifications;
    BusWireless wireless;
    QtWorkspace workspace;
};

} // namespace

QtGraphics& install() {
    // Never destroyed: code that outlives main may still log.
    static auto* const desktop = new Desktop;
    exchangeService<Applications>(&desktop->applications);
    exchangeService<Log>(&desktop->log);
    exchangeService<DistributedNotificationCenter>(&desktop->notifications);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, [] { desktop->notifications.flush(); });
    exchangeService<Graphics>(&desktop->graphics);
    exchangeService<LoginSession>(&desktop->loginSession);
    exchangeService<MainThread>(&desktop->mainThread);
    exchangeService<PanelService>(&desktop->panels);
    exchangeService<Pasteboard>(&desktop->pasteboard);
    exchangeService<ProcessList>(&desktop->processes);
    exchangeService<UserNotifications>(&desktop->userNotifications);
    exchangeService<Wireless>(&desktop->wireless);
    exchangeService<Workspace>(&desktop->workspace);
    return desktop->graphics;
}

} // namespace platform::qt
