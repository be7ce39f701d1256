#include "apps/menubar/Places.h"

#include <QCoreApplication>
#include <QDir>

namespace apps {

std::string ownItemsFolder() {
    const QDir programs(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programs.filePath("../" HALVEX_OWN_ITEMS_FOLDER)).toStdString();
}

} // namespace apps
