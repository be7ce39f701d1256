#include "platform/qt/QtWorkspace.h"

#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/ApplicationBundle.h"
#include "platform/qt/Foreground.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QUrl>

namespace platform::qt {
namespace {

bool open(const std::string& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
}

void openParentFolder(const std::string& path) {
    const std::string folder = deletingLastPathComponent(path);
    if (!open(folder))
        logLine("no program to show the folder %@", folder);
}

} // namespace

bool QtWorkspace::selectFile(const std::string& path, const std::string& rootPath) {
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openParentFolder(path);
        return true;
    }
    auto message = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                  "/org/freedesktop/FileManager1",
                                                  "org.freedesktop.FileManager1", "ShowItems");
    const auto url = QUrl::fromLocalFile(QString::fromStdString(path)).toEncoded();
    message << QStringList{QString::fromLatin1(url)} << QString();
    auto* call = new QDBusPendingCallWatcher(bus.asyncCall(message));
    QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [call, path] {
        if (call->isError())
            openParentFolder(path);
        call->deleteLater();
    });
    // The interface has no root folder to give; browsers choose the window by themselves.
    static_cast<void>(rootPath);
    return true;
}

bool QtWorkspace::openFile(const std::string& path) {
    if (posix::isApplicationBundle(path))
        return PosixWorkspace::openFile(path);
    bool opened = false;
    mainThread().perform([&] { opened = open(path); }, MainThread::Wait::UntilDone);
    return opened;
}

void QtWorkspace::bringToFront(ProcessSerialNumber process) {
    mainThread().perform([process] { bringApplicationToFront(process); }, MainThread::Wait::No);
}

} // namespace platform::qt
