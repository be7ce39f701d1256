#pragma once

#include "apps/preferences/PaneChoice.h"

#include <QWidget>

#include <functional>

class QVBoxLayout;

namespace apps {

class MenuExtraSwitches;

/// The window of the preferences: one pane at a time, or why there is none.
class PreferencesWindow final : public QWidget {
    Q_OBJECT

  public:
    /// @p isBarRunning may be called on any thread.
    explicit PreferencesWindow(std::function<bool()> isBarRunning);
    ~PreferencesWindow() override;

    /// Shows a pane in the place of the one before. Why it cannot be shown is logged, too.
    void show(const PaneChoice& choice);
    /// Shows the window, in front of the others.
    void present();
    /// The bar may have other items than before.
    void refresh();
    /// Null when none is open.
    const std::shared_ptr<platform::Bundle>& pane() const { return pane_; }

  private:
    void open(std::shared_ptr<platform::Bundle> pane);
    void showPane(QVBoxLayout& column);
    void showReason(const PaneChoice& choice, QVBoxLayout& column);
    /// An empty page in the place of the one before.
    QVBoxLayout& newPage();

    const std::function<bool()> isBarRunning_;
    std::shared_ptr<platform::Bundle> pane_;
    QWidget* page_ = nullptr;
    MenuExtraSwitches* switches_ = nullptr; ///< null when the page has none
};

} // namespace apps
