#pragma once

#include "apps/support/BusName.h"
#include "platform/qt/BarItem.h"
#include "platform/values/Event.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QList>
#include <QString>

#include <string>

namespace apps {

class ItemRegistry;
class MenuBar;

/// The menu bar's interface on the session bus. Statuses are those of platform::MenuExtraStatus.
/// Main thread only.
class BarService final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvanesoftware.MenuBar1")
    /// The name of the bar's display, or an empty string if it draws offscreen.
    Q_PROPERTY(QString Display READ display)

  public:
    /// Forwards calls that add, remove or find items to @p registry, and all others to @p menuBar.
    BarService(MenuBar& menuBar, ItemRegistry& registry);

    /// Claims the bar's well-known name and object path (see BusName::claim). A bar with a display
    /// replaces one without. If the name remains taken, logs the display of the other bar.
    BusName::Claim registerOnBus();

    static QString display();

  public slots:
    int GetMenuExtra(const QString& identifier, uint& reference);
    int AddMenuExtra(const QString& url, int position, int zero1, int zero2, int zero3, int zero4);
    int RemoveMenuExtra(uint reference, int flags);
    QList<platform::qt::BarItem> ListMenuExtras();
    bool Snapshot(const QString& path);
    QList<platform::qt::KnownItem> Items();

    // These reply with the error platform::qt::kBarError if they fail.
    bool Click(const QString& identifier, uint modifierFlags, int clickCount, int buttonNumber,
               const QDBusMessage& message);
    bool SnapshotItem(const QString& identifier, const QString& path, const QDBusMessage& message);
    void SetPosition(const QString& identifier, int position, const QDBusMessage& message);
    void Focus(const QDBusMessage& message);
    void Enable(const QString& identifier, bool on, const QDBusMessage& message);

  signals:
    void MenuExtraLoaded(const QString& identifier);
    void MenuExtraUnloaded(const QString& identifier);
    void MenuExtraRefused(const QString& path, const QString& reason);
    void ItemsChanged();

  private:
    void announceChange();
    std::string click(const std::string& identifier, const platform::Event& event, bool& handled);

    bool changeAnnounced_ = false;
    MenuBar& menuBar_;
    ItemRegistry& registry_;
    BusName busName_;
};

} // namespace apps
