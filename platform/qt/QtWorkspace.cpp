#include "platform/qt/QtWorkspace.h"

#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/ApplicationBundle.h"
#include "platform/qt/BusCall.h"
#include "platform/qt/Foreground.h"
#include "platform/qt/Strings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QUrl>

namespace platform::qt {
namespace {

bool open(const std::string& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(qString(path)));
}

void openParentFolder(const std::string& path) {
    const std::string folder = deletingLastPathComponent(path);
    if (!open(folder))
        logLine("folder %@ cannot be shown: no program opens it", folder);
}

} // namespace

bool QtWorkspace::selectFile(const std::string& path, const std::string& rootPath) {
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openParentFolder(path);
        return true;
    }
    auto call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                               "/org/freedesktop/FileManager1",
                                               "org.freedesktop.FileManager1", "ShowItems");
    const auto url = QUrl::fromLocalFile(qString(path)).toEncoded();
    call << QStringList{QString::fromLatin1(url)} << QString();
    callAsynchronously(bus, call, [path](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ErrorMessage)
            openParentFolder(path);
    });
    // The D-Bus interface has no such parameter.
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
