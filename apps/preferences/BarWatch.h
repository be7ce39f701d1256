#pragma once

#include <QObject>
#include <QString>

namespace apps {

/// Tells when the menu bar may have other items than before: when it says so, comes, or goes. Main
/// thread.
class BarWatch final : public QObject {
    Q_OBJECT

  public:
    BarWatch();

  signals:
    void changed();

  private slots:
    void itemChanged(const QString& identifier);
};

} // namespace apps
