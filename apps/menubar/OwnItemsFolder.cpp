#include "apps/menubar/OwnItemsFolder.h"

#include <QCoreApplication>
#include <QDir>

namespace apps {

std::string ownItemsFolder() {
    const QDir programFolder(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programFolder.filePath("../" HALVEX_OWN_ITEMS_FOLDER)).toStdString();
}

} // namespace apps
