#pragma once

#include <QObject>
#include <QString>

namespace apps {

/// Watches the menu bar on the session bus. Main thread only.
class BarWatch final : public QObject {
    Q_OBJECT

  public:
    BarWatch();

  signals:
    /// The bar has loaded or unloaded an item, started or exited.
    void changed();

  private slots:
    void itemChanged(const QString& identifier);
};

} // namespace apps
