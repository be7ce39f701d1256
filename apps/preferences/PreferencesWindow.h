#pragma once

#include "apps/preferences/MenuExtraSwitches.h"
#include "apps/preferences/PaneLookup.h"

#include <QWidget>

class QVBoxLayout;

namespace apps {

/// The window that shows one preference pane at a time, or the reason why it cannot be shown.
class PreferencesWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit PreferencesWindow(BarQueries bar);
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

    const BarQueries bar_;
    std::shared_ptr<platform::Bundle> pane_;
    QWidget* page_ = nullptr;
    MenuExtraSwitches* switches_ = nullptr; ///< null if the page has none
};

} // namespace apps
