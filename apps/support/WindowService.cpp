#include "apps/support/WindowService.h"

#include <QDir>
#include <QEvent>
#include <QTimer>

namespace apps {

WindowService::WindowService(QObject& busObject, QWidget& window)
    : QDBusAbstractAdaptor(&busObject), window_(window) {
    window.installEventFilter(this);
}

bool WindowService::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show)
        isFirstPaintPending_ = true;
    if (event->type() == QEvent::Paint && isFirstPaintPending_) {
        isFirstPaintPending_ = false;
        // Emitted once the child widgets are painted too and the image is flushed.
        QTimer::singleShot(0, this, &WindowService::Drawn);
    }
    return QDBusAbstractAdaptor::eventFilter(watched, event);
}

bool WindowService::Snapshot(const QString& path) {
    return window_.isVisible() && QDir::isAbsolutePath(path) && window_.grab().save(path, "PNG");
}

} // namespace apps
