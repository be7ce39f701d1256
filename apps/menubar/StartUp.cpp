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

DisplayChoice::DisplayChoice() {
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
    set("QT_QPA_PLATFORM", display ? "xcb" : "offscreen");
    // No GL is drawn with. And for pictures of a few kilobytes shared memory costs more than it
    // saves: the server's word that it is done with it wakes two threads at every tick.
    set("QT_XCB_GL_INTEGRATION", "none");
    set("QT_XCB_NO_MITSHM", "1");
    set("QT_NO_GLIB", "1"); // Qt's own event loop does less at each tick
}

DisplayChoice::~DisplayChoice() {
    for (const char* name : set_)
        qunsetenv(name);
}

void DisplayChoice::set(const char* name, const char* value) {
    if (qEnvironmentVariableIsSet(name))
        return;
    qputenv(name, value);
    set_.push_back(name);
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

std::string ownItemsFolder() {
    const QDir programs(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programs.filePath("../" HALVEX_OWN_ITEMS_FOLDER)).toStdString();
}

std::string absolutePath(const std::string& path) {
    return QDir::cleanPath(QDir::current().absoluteFilePath(QString::fromStdString(path)))
        .toStdString();
}
