#include "apps/support/StartUp.h"

#include "apps/support/DesktopFont.h"
#include "platform/Log.h"
#include "platform/base/NonCopyable.h"

#include <QApplication>
#include <QLocale>

#include <csignal>
#include <cstdlib>
#include <fontconfig/fontconfig.h>
#include <malloc.h>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

using platform::logLine;

namespace apps {
namespace {

/// Sets environment variables that the QApplication reads in its constructor, and restores them
/// in the destructor.
class QtEnvironment : platform::NonCopyable {
  public:
    QtEnvironment();
    ~QtEnvironment();

  private:
    void setDefault(const char* name, const char* value);
    void replace(const char* name, const char* value);

    std::vector<std::pair<const char*, std::optional<QByteArray>>> saved_;
};

QtEnvironment::QtEnvironment() {
    const bool hasDisplay = !qEnvironmentVariableIsEmpty("DISPLAY");
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    // Wayland sessions set this for all their programs.
    if (hasDisplay && (platform.isEmpty() || platform.startsWith("wayland")))
        replace("QT_QPA_PLATFORM", "xcb");
    setDefault("QT_XCB_GL_INTEGRATION", "none"); // nothing is drawn with GL
    // Shared memory is not worth it for images of a few kilobytes: the server's completion event
    // wakes two threads per tick.
    setDefault("QT_XCB_NO_MITSHM", "1");
    setDefault("QT_NO_GLIB", "1"); // Qt's own event loop does less work per tick
}

QtEnvironment::~QtEnvironment() {
    for (const auto& [name, value] : saved_) {
        if (value)
            qputenv(name, *value);
        else
            qunsetenv(name);
    }
}

void QtEnvironment::setDefault(const char* name, const char* value) {
    if (!qEnvironmentVariableIsSet(name))
        replace(name, value);
}

void QtEnvironment::replace(const char* name, const char* value) {
    saved_.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name))
                                                              : std::nullopt);
    qputenv(name, value);
}

bool hasStarted = false;

void logQtMessages() {
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
        // The offscreen platform warns about every window operation it lacks.
        if (!message.startsWith("This plugin does not support"))
            logLine("Qt: %@", message.toStdString());
        // Qt would abort, for example because it cannot connect to the display.
        if (type == QtFatalMsg && !hasStarted)
            std::_Exit(1);
    });
}

} // namespace

std::unique_ptr<QApplication> startApplication(char** argv, const char* name) {
    mallopt(M_ARENA_MAX, 1); // one heap, because several would be fragmented
    logQtMessages();
    std::signal(SIGPIPE, SIG_IGN); // the process that reads the log may exit first
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        logLine(
            "%@ cannot start: there is no display. Set DISPLAY, or QT_QPA_PLATFORM=offscreen to "
            "draw without one.",
            name);
        return nullptr;
    }
    static int argumentCount = 1;    // QApplication keeps a reference
    const QtEnvironment environment; // set before fontLoader reads the environment
    // Fontconfig reads many small files. Load them while Qt connects to the X server.
    const std::jthread fontLoader([] { FcInit(); });
    auto application = std::make_unique<QApplication>(argumentCount, argv);
    application->setApplicationName(name);
    QApplication::setLayoutDirection(QLocale::system().textDirection());
    applyDesktopFont();
    hasStarted = true;
    return application;
}

} // namespace apps
