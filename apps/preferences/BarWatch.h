#pragma once

#include <QObject>
#include <QString>

namespace apps {

/// Reports changes of the menu bar, using the session bus. Main thread only.
class BarWatch final : public QObject {
    Q_OBJECT

  public:
    BarWatch();

  signals:
    /// Emitted after the bar has loaded or unloaded an item, has started or has exited.
    void changed();

  private slots:
    void itemChanged(const QString& identifier);
};

} // namespace apps
