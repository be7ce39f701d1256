#pragma once

#include "apps/support/Appearance.h"

#include <QDBusMessage>
#include <QObject>

namespace apps {

/// Applies an appearance to the program. With Appearance::Desktop, follows the desktop's
/// "color-scheme" setting, read from the settings portal, until this object is destroyed. If the
/// palette of Qt's platform theme is already dark, it is left unchanged. Does not start the portal;
/// the setting is read whenever the portal appears on the bus. Main thread only.
class ProgramAppearance final : public QObject {
    Q_OBJECT

  public:
    /// Returns immediately. The desktop's setting is applied once the main loop runs.
    explicit ProgramAppearance(Appearance appearance);

  private slots:
    void settingChanged(const QDBusMessage& message);

  private:
    void followDesktop();
    void readSetting();
    static void applyColorScheme(uint scheme);
};

} // namespace apps
