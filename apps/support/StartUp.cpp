#include "apps/support/StartUp.h"

#include "platform/Log.h"

#include <QApplication>
#include <QColor>
#include <QPalette>

#include <csignal>
#include <fontconfig/fontconfig.h>
#include <malloc.h>
#include <thread>

using platform::logLine;

namespace apps {
namespace {

QPalette lightPalette() {
    QPalette palette(QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x70, 0xd0));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

QPalette darkPalette() {
    QPalette palette(QColor(0x2b, 0x2b, 0x2d));
    palette.setColor(QPalette::Mid, QColor(0x10, 0x10, 0x10));
    // Menus; the lines in them are a darker shade of the window's.
    palette.setColor(QPalette::Base, QColor(0x38, 0x38, 0x3a));
    palette.setColor(QPalette::Highlight, QColor(0x5a, 0x9c, 0xf8));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    // What cannot be chosen, which would be darker than its ground.
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x8a, 0x8a, 0x8d));
    return palette;
}

} // namespace

std::optional<Appearance> appearanceOfName(std::string_view name) {
    if (name == "desktop")
        return Appearance::Desktop;
    if (name == "light")
        return Appearance::Light;
    if (name == "dark")
        return Appearance::Dark;
    return std::nullopt;
}

DisplayChoice::DisplayChoice() {
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
    const char* const platform = display ? "xcb" : "offscreen";
    // A Wayland session says so to all its programs; but there no bar gets room on the screen.
    if (display && qgetenv("QT_QPA_PLATFORM").startsWith("wayland"))
        replace("QT_QPA_PLATFORM", platform);
    set("QT_QPA_PLATFORM", platform);
    // No GL is drawn with. And for pictures of a few kilobytes shared memory costs more than it
    // saves: the server's word that it is done with it wakes two threads at every tick.
    set("QT_XCB_GL_INTEGRATION", "none");
    set("QT_XCB_NO_MITSHM", "1");
    set("QT_NO_GLIB", "1"); // Qt's own event loop does less at each tick
}

DisplayChoice::~DisplayChoice() {
    for (const auto& [name, before] : changed_) {
        if (before)
            qputenv(name, *before);
        else
            qunsetenv(name);
    }
}

void DisplayChoice::set(const char* name, const char* value) {
    if (!qEnvironmentVariableIsSet(name))
        replace(name, value);
}

void DisplayChoice::replace(const char* name, const char* value) {
    changed_.emplace_back(name, qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name))
                                                                : std::nullopt);
    qputenv(name, value);
}

std::unique_ptr<QApplication> startApplication(char** argv, const char* name) {
    mallopt(M_ARENA_MAX, 1); // the few threads here would only scatter what little there is
    logQtMessages();
    std::signal(SIGPIPE, SIG_IGN); // whoever reads the log may go
    if (qEnvironmentVariableIsEmpty("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        logLine("there is no display, nobody sees %@", name);
    static int qtArguments = 1; // the application object keeps its address
    const DisplayChoice choice; // changes the environment, which the other thread reads
    // The list of fonts is read from many small files: beside the way to the X server, not after
    // it.
    const std::jthread fonts([] { FcInit(); });
    auto application = std::make_unique<QApplication>(qtArguments, argv);
    application->setApplicationName(name);
    return application;
}

void logQtMessages() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
        // Offscreen there is no window manager to ask, which is no news.
        if (!message.startsWith("This plugin does not support"))
            logLine("Qt: %@", message.toStdString());
    });
}

void applyAppearance(Appearance appearance) {
    switch (appearance) {
    case Appearance::Desktop:
        return QApplication::setPalette(QPalette());
    case Appearance::Light:
        return QApplication::setPalette(lightPalette());
    case Appearance::Dark:
        return QApplication::setPalette(darkPalette());
    }
}

} // namespace apps
