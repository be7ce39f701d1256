#include "platform/qt/BarItem.h"

#include "platform/qt/Strings.h"

#include <QDBusArgument>

namespace platform::qt {

QDBusArgument& operator<<(QDBusArgument& argument, const BarItem& item) {
    argument.beginStructure();
    argument << qString(item.identifier) << qString(item.path) << item.position << item.width;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BarItem& item) {
    QString identifier, path;
    argument.beginStructure();
    argument >> identifier >> path >> item.position >> item.width;
    argument.endStructure();
    item.identifier = identifier.toStdString();
    item.path = path.toStdString();
    return argument;
}

} // namespace platform::qt
