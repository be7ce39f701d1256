#pragma once

#include "apps/preferences/PaneLookup.h"

#include <QWidget>

#include <functional>

class QVBoxLayout;

namespace apps {

class MenuExtraSwitches;

/// The window that shows one preference pane at a time, or the reason why it cannot be shown.
class PreferencesWindow final : public QWidget {
    Q_OBJECT

  public:
    /// @p isBarRunning must be thread-safe.
    explicit PreferencesWindow(std::function<bool()> isBarRunning);
    ~PreferencesWindow() override;

    /// Replaces the pane. Does nothing if the same pane is shown already. If the lookup failed,
    /// shows and logs its error. Does not show the window itself.
    void showPane(const PaneLookup& lookup);
    /// Queries the bar for its loaded items, without blocking, and updates the page later.
    void refresh();
    /// Returns the shown pane, or null.
    const std::shared_ptr<platform::Bundle>& pane() const { return pane_; }

  private:
    void setPane(std::shared_ptr<platform::Bundle> pane);
    void fillPanePage(QVBoxLayout& column);
    void fillErrorPage(const PaneLookup& lookup, QVBoxLayout& column);
    /// Replaces the page with an empty one and returns its layout.
    QVBoxLayout& newPage();

    const std::function<bool()> isBarRunning_;
    std::shared_ptr<platform::Bundle> pane_;
    QWidget* page_ = nullptr;
    MenuExtraSwitches* switches_ = nullptr; ///< null if the page has none
};

} // namespace apps
