#include "platform/qt/BarItem.h"

#include "platform/qt/Strings.h"

#include <QDBusArgument>
#include <QVariantMap>

namespace platform::qt {

std::string problemOf(const KnownItem& item) {
    return item.reason.empty() ? "" : item.state + ": " + item.reason;
}

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

QDBusArgument& operator<<(QDBusArgument& argument, const KnownItem& item) {
    argument.beginStructure();
    argument << qString(item.identifier)
             << QVariantMap{{"path", qString(item.path)},   {"position", item.position},
                            {"width", item.width},          {"version", qString(item.version)},
                            {"name", qString(item.name)},   {"own", item.isOwn},
                            {"state", qString(item.state)}, {"reason", qString(item.reason)}};
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, KnownItem& item) {
    QString identifier;
    QVariantMap properties;
    argument.beginStructure();
    argument >> identifier >> properties;
    argument.endStructure();
    const auto text = [&](const char* name) { return properties[name].toString().toStdString(); };
    item = {.identifier = identifier.toStdString(),
            .path = text("path"),
            .position = properties["position"].toInt(),
            .width = properties["width"].toDouble(),
            .version = text("version"),
            .name = text("name"),
            .isOwn = properties["own"].toBool(),
            .state = text("state"),
            .reason = text("reason")};
    return argument;
}

} // namespace platform::qt
