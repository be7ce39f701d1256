#pragma once

#include "platform/Bundle.h"

#include <QLabel>
#include <QThreadPool>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class QCheckBox;

namespace apps {

/// Queries of the menu bar that do not start it. Thread-safe.
struct BarQueries {
    std::function<bool()> isRunning;
    /// Returns why an item of the running bar is not loaded, human-readable, or an empty string.
    std::function<std::string(const std::string& identifier)> problem;
    /// Returns the same for all items of third parties that are not loaded, one line each.
    std::function<std::string()> thirdPartyProblems;
};

/// The page of the product's own preference pane: one check box per menu extra in the pane, checked
/// while the menu bar has loaded the item, and the reason if the bar has not loaded it. Below them,
/// the items of third parties that the bar has not loaded. Toggling a box installs and loads the
/// item, or unloads and removes it. Main thread only.
class MenuExtraSwitches final : public QWidget {
    Q_OBJECT

  public:
    /// @p pane must be the pane that this process has loaded (Bundle::setCodeState), because items
    /// are installed from the loaded pane. @p bar is called on another thread.
    MenuExtraSwitches(const platform::Bundle& pane, BarQueries bar);
    /// Waits for the current operation on an item, which may take several seconds.
    ~MenuExtraSwitches() override;

    /// Queries the bar on another thread and updates the boxes when it has replied.
    void refresh();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    struct Switch {
        std::int32_t tag = 0;
        std::string identifier;
        QCheckBox* box = nullptr;
        QLabel* problem = nullptr; ///< hidden if the item has no problem
        bool isBusy = false;       ///< being toggled
    };

    void addSwitch(const platform::Bundle& extra);
    void updateBoxColours();
    void toggle(std::size_t index, bool on);
    struct State {
        bool isLoaded = false;
        std::string problem;
    };

    void showToggleResult(std::size_t index, bool requested, const State& state);
    void showState(const Switch& entry, const State& state);
    /// Queries the bar. Worker thread only.
    State stateOf(const std::string& identifier) const;
    /// Queues @p work for the worker thread, because calls to the bar may block for seconds.
    void runOnWorker(std::function<void()> work);
    /// Queues @p work for the main thread. It is dropped if this object has been destroyed by then.
    /// Worker thread only.
    void runOnMainThread(std::function<void()> work);

    const BarQueries bar_;
    std::vector<Switch> switches_;
    QLabel* message_ = nullptr;
    QLabel* thirdPartyProblems_ = nullptr; ///< hidden if there are none
    QThreadPool worker_;
};

} // namespace apps
