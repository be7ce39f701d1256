#include "apps/menubar/StartUp.h"

#include "platform/Log.h"

#include <QApplication>
#include <QColor>
#include <QDir>
#include <QPalette>

using platform::logLine;

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
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20)); // menus
    palette.setColor(QPalette::Highlight, QColor(0x5a, 0x9c, 0xf8));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    return palette;
}

} // namespace

void chooseDisplay() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
        if (!display)
            logLine("no X display: the bar is drawn offscreen");
        qputenv("QT_QPA_PLATFORM", display ? "xcb" : "offscreen");
    }
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
}

void logQtMessages() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
        // Offscreen there is no window manager to ask, which is no news.
        if (!message.startsWith("This plugin does not support"))
            logLine("Qt: %@", message.toStdString());
    });
}

void applyAppearance(Appearance appearance) {
    if (appearance != Appearance::Desktop)
        QApplication::setPalette(appearance == Appearance::Dark ? darkPalette() : lightPalette());
}

std::string ownClockPath() {
    const QDir programs(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programs.filePath("../" HALVEX_OWN_ITEMS_FOLDER "/Clock.menu"))
        .toStdString();
}

std::string absolutePath(const std::string& path) {
    return QDir::cleanPath(QDir::current().absoluteFilePath(QString::fromStdString(path)))
        .toStdString();
}
