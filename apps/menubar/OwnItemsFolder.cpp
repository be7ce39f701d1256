#include "apps/menubar/OwnItemsFolder.h"

#include "platform/FileManager.h"

#include <QCoreApplication>
#include <QDir>

namespace apps {

std::string ownItemsFolder() {
    const QDir programFolder(QCoreApplication::applicationDirPath());
    const QString folder = programFolder.filePath("../" HALVEX_OWN_ITEMS_FOLDER);
    return platform::fileManager().resolvingSymbolicLinks(folder.toStdString());
}

} // namespace apps
