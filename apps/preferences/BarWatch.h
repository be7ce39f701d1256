#pragma once

#include <QObject>

namespace apps {

/// Reports changes of the menu bar, using the session bus. Main thread only.
class BarWatch final : public QObject {
    Q_OBJECT

  public:
    BarWatch();

  signals:
    /// Emitted after the state of an item has changed, or the bar has started or exited.
    void changed();

  private slots:
    void itemsChanged();
};

} // namespace apps
