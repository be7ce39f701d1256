#pragma once

#include "extras/HalvexTimeMenu/WarningTexts.h"
#include "warnings/WarningKeeper.h"
#include "warnings/WarningStore.h"

#include <QObject>
#include <QTimer>

class QWidget;

namespace apps {

/// Rings the warnings that are set in the clock, with the texts and the sound of the clock. Quits
/// the main loop some seconds after the last one, and only while the program's window is hidden: a
/// program that has never kept a warning keeps running. Main thread only.
class KeptWarnings final : public QObject {
  public:
    /// Keeps a reference to @p window.
    explicit KeptWarnings(QWidget& window);
    ~KeptWarnings() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void quitLater();
    void quitIfIdle();

    QWidget& window_;
    warnings::WarningStore store_;
    const extras::WarningTexts texts_;
    warnings::WarningKeeper keeper_{store_, texts_};
    std::unique_ptr<platform::Watch> storeWatch_;
    bool hasKept_ = false;
    QTimer quitTimer_;
};

} // namespace apps
