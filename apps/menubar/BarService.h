#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QList>
#include <QString>

namespace apps {

class ItemKeeper;
class MenuBar;

/// A row of ListMenuExtras.
struct MenuExtraRow {
    QString identifier;
    QString path;
    int position = 0;
    double width = 0; ///< points
};

QDBusArgument& operator<<(QDBusArgument& argument, const MenuExtraRow& row);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuExtraRow& row);

/// The menu bar on the session bus. Statuses are those of platform::MenuExtraStatus.
class BarService final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.quorvanesoftware.MenuBar1")

  public:
    enum class Registration { Done, TakenByAnother, NoBus };

    /// Makes @p menuBar answer on the bus, and @p items what is asked about single items. What is
    /// asked before the main loop runs is answered then.
    BarService(MenuBar& menuBar, ItemKeeper& items);

    /// Takes the well-known name; TakenByAnother when another bar has it. The session is over for
    /// the bar when this bus goes: it then ends the main loop, for it could not be told to.
    Registration registerOnBus();

  public slots:
    int GetMenuExtra(const QString& identifier, uint& reference);
    int AddMenuExtra(const QString& url, int position, int zero1, int zero2, int zero3, int zero4);
    int RemoveMenuExtra(uint reference, int flags);
    QList<MenuExtraRow> ListMenuExtras();
    bool Click(const QString& identifier, uint modifierFlags, int clickCount, int buttonNumber);
    bool Snapshot(const QString& path);

  signals:
    void MenuExtraLoaded(const QString& identifier);
    void MenuExtraUnloaded(const QString& identifier);

  private slots:
    void endSession();

  private:
    MenuBar& menuBar_;
    ItemKeeper& items_;
};

} // namespace apps

Q_DECLARE_METATYPE(apps::MenuExtraRow)
