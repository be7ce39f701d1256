#include "apps/menubar/BarSnapshot.h"

#include "platform/Log.h"
#include "platform/qt/Strings.h"

#include <QFileInfo>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QSaveFile>
#include <QWidget>

#include <vector>

using platform::logLine;

namespace apps {
namespace {

/// Returns the menu and its open submenus, in the order in which they overlap.
std::vector<QWidget*> openMenus(QWidget* menu) {
    std::vector<QWidget*> menus{menu};
    for (QMenu* submenu : menu->findChildren<QMenu*>())
        if (submenu->isVisible())
            menus.push_back(submenu);
    return menus;
}

QImage draw(QWidget& bar, QWidget* openMenu) {
    const QPixmap barPicture = bar.grab();
    if (!openMenu)
        return barPicture.toImage();
    const auto menus = openMenus(openMenu);
    QRect area = bar.geometry();
    for (const QWidget* menu : menus)
        area |= menu->geometry();
    const double scale = barPicture.devicePixelRatio();
    QImage image((QSizeF(area.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawPixmap(bar.pos() - area.topLeft(), barPicture);
    for (QWidget* menu : menus)
        painter.drawPixmap(menu->pos() - area.topLeft(), menu->grab());
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
