#include "apps/halvex/KeptWarnings.h"

#include "extras/shared/Texts.h"
#include "menubar/ItemPreferences.h"
#include "platform/Bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QWidget>

#include <memory>

namespace apps {
namespace {

constexpr std::chrono::seconds kQuitDelay{2};

/// Returns the settings of the clock that is shipped beside this application, and uses its
/// translations.
platform::Preferences clockSettings() {
    const QString plugIns = QCoreApplication::applicationDirPath() + "/../../..";
    const auto clock = platform::Bundle::bundleWithPath(
        QDir::cleanPath(plugIns + "/HalvexTimeMenu.menu").toStdString());
    if (!clock)
        return {};
    extras::bindTexts(*clock);
    return menubar::preferencesOf(clock);
}

} // namespace

KeptWarnings::KeptWarnings(QWidget& window) : window_(window), texts_(clockSettings()) {
    hasKept_ = keeper_.hasWork();
    keeper_.setIdleHandler([this] { quitLater(); });
    storeWatch_ = store_.onChange([this] { hasKept_ = keeper_.hasWork() || hasKept_; });
    window.installEventFilter(this);
    quitTimer_.setSingleShot(true);
    connect(&quitTimer_, &QTimer::timeout, this, &KeptWarnings::quitIfIdle);
}

KeptWarnings::~KeptWarnings() = default;

bool KeptWarnings::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide)
        quitLater();
    return QObject::eventFilter(watched, event);
}

void KeptWarnings::quitLater() {
    if (hasKept_)
        quitTimer_.start(kQuitDelay);
}

void KeptWarnings::quitIfIdle() {
    if (!keeper_.hasWork() && !window_.isVisible())
        QCoreApplication::quit();
}

} // namespace apps
