#pragma once

#include "apps/support/BusName.h"
#include "platform/qt/BarItem.h"

#include <QDBusAbstractAdaptor>
#include <QList>
#include <QString>

namespace apps {

class ItemRegistry;
class MenuBar;

/// The menu bar's interface on the session bus. Statuses are those of platform::MenuExtraStatus.
/// Main thread only.
class BarService final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvanesoftware.MenuBar1")

  public:
    /// Forwards calls that add, remove or find items to @p registry, and all others to @p menuBar.
    BarService(MenuBar& menuBar, ItemRegistry& registry);

    /// Claims the bar's well-known name and object path (see BusName::claim).
    BusName::Claim registerOnBus();

  public slots:
    int GetMenuExtra(const QString& identifier, uint& reference);
    int AddMenuExtra(const QString& url, int position, int zero1, int zero2, int zero3, int zero4);
    int RemoveMenuExtra(uint reference, int flags);
    QList<platform::qt::BarItem> ListMenuExtras();
    bool Click(const QString& identifier, uint modifierFlags, int clickCount, int buttonNumber);
    bool Snapshot(const QString& path);

  signals:
    void MenuExtraLoaded(const QString& identifier);
    void MenuExtraUnloaded(const QString& identifier);

  private:
    MenuBar& menuBar_;
    ItemRegistry& registry_;
    BusName busName_;
};

} // namespace apps
