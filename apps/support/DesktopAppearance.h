#pragma once

#include <QDBusMessage>
#include <QObject>

/// Keeps the program as light or dark as the desktop says it wants to be (the setting
/// "color-scheme" of the settings portal), now and whenever that changes. Qt's own platform themes
/// are heard first: a palette that is dark already stays. Does nothing where there is no portal;
/// starts none. Main thread.
class DesktopAppearance final : public QObject {
    Q_OBJECT

  public:
    /// Asks the desktop; its answer comes with the main loop.
    DesktopAppearance();

  private slots:
    void settingChanged(const QDBusMessage& message);

  private:
    static void follow(uint scheme);
};
