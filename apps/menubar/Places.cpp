#include "apps/menubar/Places.h"

#include <QCoreApplication>
#include <QDir>

std::string ownItemsFolder() {
    const QDir programs(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(programs.filePath("../" HALVEX_OWN_ITEMS_FOLDER)).toStdString();
}

std::string absolutePath(const std::string& path) {
    return QDir::cleanPath(QDir::current().absoluteFilePath(QString::fromStdString(path)))
        .toStdString();
}
