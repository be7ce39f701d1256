#include "apps/menubar/BarService.h"

#include "apps/menubar/ItemKeeper.h"
#include "apps/menubar/MenuBar.h"
#include "platform/Log.h"
#include "platform/qt/BarNames.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMetaType>

using platform::qt::kBarBusName;
using platform::qt::kBarObjectPath;

namespace apps {

QDBusArgument& operator<<(QDBusArgument& argument, const MenuExtraRow& row) {
    argument.beginStructure();
    argument << row.identifier << row.path << row.position << row.width;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuExtraRow& row) {
    argument.beginStructure();
    argument >> row.identifier >> row.path >> row.position >> row.width;
    argument.endStructure();
    return argument;
}

BarService::BarService(MenuBar& menuBar, ItemKeeper& items)
    : QDBusAbstractAdaptor(&menuBar), menuBar_(menuBar), items_(items) {
    qDBusRegisterMetaType<MenuExtraRow>();
    qDBusRegisterMetaType<QList<MenuExtraRow>>();
    connect(&menuBar, &MenuBar::loaded, this, &BarService::MenuExtraLoaded);
    connect(&menuBar, &MenuBar::unloaded, this, &BarService::MenuExtraUnloaded);
}

BarService::Registration BarService::registerOnBus() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(kBarObjectPath, &menuBar_))
        return Registration::NoBus;
    bus.connect("", "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                this, SLOT(endSession()));
    return bus.registerService(kBarBusName) ? Registration::Done : Registration::TakenByAnother;
}

void BarService::endSession() {
    platform::logLine("the session bus has gone, and the menu bar with it");
    QCoreApplication::quit();
}

int BarService::GetMenuExtra(const QString& identifier, uint& reference) {
    return items_.getMenuExtra(identifier.toStdString(), reference);
}

int BarService::AddMenuExtra(const QString& url, int position, int zero1, int zero2, int zero3,
                             int zero4) {
    return items_.addMenuExtra(url.toStdString(), position, zero1, zero2, zero3, zero4);
}

int BarService::RemoveMenuExtra(uint reference, int flags) {
    return items_.removeMenuExtra(reference, flags);
}

QList<MenuExtraRow> BarService::ListMenuExtras() {
    QList<MenuExtraRow> rows;
    for (const auto& item : menuBar_.items())
        rows.append({QString::fromStdString(item.identifier), QString::fromStdString(item.path),
                     item.position, item.width});
    return rows;
}

bool BarService::Click(const QString& identifier, uint modifierFlags, int clickCount,
                       int buttonNumber) {
    return menuBar_.click(
        identifier.toStdString(),
        {.modifierFlags = modifierFlags, .clickCount = clickCount, .buttonNumber = buttonNumber});
}

bool BarService::Snapshot(const QString& path) {
    return menuBar_.snapshot(path.toStdString());
}

} // namespace apps
