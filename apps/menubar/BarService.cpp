#include "apps/menubar/BarService.h"

#include "apps/menubar/ItemRegistry.h"
#include "apps/menubar/MenuBar.h"
#include "platform/qt/BarNames.h"
#include "platform/qt/Strings.h"

#include <QDBusMetaType>

using platform::qt::BarItem;
using platform::qt::kBarBusName;
using platform::qt::kBarObjectPath;
using platform::qt::qString;

namespace apps {

BarService::BarService(MenuBar& menuBar, ItemRegistry& registry)
    : QDBusAbstractAdaptor(&menuBar), menuBar_(menuBar), registry_(registry),
      busName_(kBarBusName) {
    qDBusRegisterMetaType<BarItem>();
    qDBusRegisterMetaType<QList<BarItem>>();
    connect(&menuBar.items(), &ItemCollection::added, this,
            [this](const Item& item) { emit MenuExtraLoaded(qString(item.identifier())); });
    connect(&menuBar.items(), &ItemCollection::removed, this, [this](const ItemRecord& record) {
        emit MenuExtraUnloaded(qString(record.identifier));
    });
}

BusName::Claim BarService::registerOnBus() {
    return busName_.claim(kBarObjectPath, menuBar_);
}

int BarService::GetMenuExtra(const QString& identifier, uint& reference) {
    return registry_.getMenuExtra(identifier.toStdString(), reference);
}

int BarService::AddMenuExtra(const QString& url, int position, int zero1, int zero2, int zero3,
                             int zero4) {
    return registry_.addMenuExtra(url.toStdString(), position, zero1, zero2, zero3, zero4);
}

int BarService::RemoveMenuExtra(uint reference, int flags) {
    return registry_.removeMenuExtra(reference, flags);
}

QList<BarItem> BarService::ListMenuExtras() {
    QList<BarItem> rows;
    for (const Item& item : menuBar_.items())
        rows.append(
            {item.identifier(), item.record.path, item.record.position, item.extra().length()});
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
