#include "apps/menubar/BarSnapshot.h"

#include "platform/Log.h"
#include "platform/qt/Strings.h"

#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSaveFile>
#include <QWidget>

using platform::logLine;

namespace apps {
namespace {

QImage draw(QWidget& bar, QWidget* openMenu) {
    const QPixmap barPicture = bar.grab();
    if (!openMenu)
        return barPicture.toImage();
    const QPoint offset = openMenu->pos() - bar.pos();
    const QRect area = bar.rect().united(QRect(offset, openMenu->size()));
    const double scale = barPicture.devicePixelRatio();
    QImage image((QSizeF(area.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawPixmap(-area.topLeft(), barPicture);
    painter.drawPixmap(offset - area.topLeft(), openMenu->grab());
    return image;
}

} // namespace

bool writeSnapshot(QWidget& bar, QWidget* openMenu, const std::string& path) {
    const QString name = platform::qt::qString(path);
    const QFileInfo info(name);
    if (!info.isAbsolute() || (info.exists() ? !info.isFile() : info.isSymLink())) {
        logLine("cannot write snapshot: %@ is not the absolute path of a file", path);
        return false;
    }
    QSaveFile file(name);
    const bool written =
        file.open(QIODevice::WriteOnly) && draw(bar, openMenu).save(&file, "PNG") && file.commit();
    if (!written)
        logLine("cannot write snapshot %@: %@", path, file.errorString().toStdString());
    return written;
}

} // namespace apps
