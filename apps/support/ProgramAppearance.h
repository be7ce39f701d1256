#pragma once

#include "apps/support/StartUp.h"

#include <QDBusMessage>
#include <QObject>

namespace apps {

/// Gives the program its colours. When those are the desktop's, keeps it as light or dark as the
/// desktop says it wants to be (the setting "color-scheme" of the settings portal), now and
/// whenever that changes. Qt's own platform themes are heard first: a palette that is dark already
/// stays. Does nothing where there is no portal; starts none. Main thread.
class ProgramAppearance final : public QObject {
    Q_OBJECT

  public:
    /// The desktop is asked; its answer comes with the main loop.
    explicit ProgramAppearance(Appearance wanted);

  private slots:
    void settingChanged(const QDBusMessage& message);

  private:
    void askDesktop();
    static void follow(uint scheme);
};

} // namespace apps
