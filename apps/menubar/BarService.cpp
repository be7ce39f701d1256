#include "apps/menubar/BarService.h"

#include "apps/menubar/MenuBar.h"

#include <QDBusConnection>
#include <QDBusMetaType>

using platform::MenuExtraStatus;

namespace {

constexpr const char* kBusName = "com.quorvanesoftware.MenuBar";
constexpr const char* kObjectPath = "/com/quorvanesoftware/MenuBar";

} // namespace

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

BarService::BarService(MenuBar& menuBar) : QDBusAbstractAdaptor(&menuBar), menuBar_(menuBar) {
    qDBusRegisterMetaType<MenuExtraRow>();
    qDBusRegisterMetaType<QList<MenuExtraRow>>();
    connect(&menuBar, &MenuBar::loaded, this, &BarService::MenuExtraLoaded);
    connect(&menuBar, &MenuBar::unloaded, this, &BarService::MenuExtraUnloaded);
}

BarService::Registration BarService::registerOnBus() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(kObjectPath, &menuBar_))
        return Registration::NoBus;
    return bus.registerService(kBusName) ? Registration::Done : Registration::TakenByAnother;
}

int BarService::GetMenuExtra(const QString& identifier, uint& reference) {
    const auto found = menuBar_.find(identifier.toStdString());
    reference = found.value_or(0);
    return static_cast<int>(found ? MenuExtraStatus::NoError : MenuExtraStatus::NotLoaded);
}

int BarService::AddMenuExtra(const QString& url, int position, int, int, int, int) {
    return static_cast<int>(menuBar_.addLater(url.toStdString(), position));
}

int BarService::RemoveMenuExtra(uint reference, int) {
    return static_cast<int>(menuBar_.remove(reference));
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
