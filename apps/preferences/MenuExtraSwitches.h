#pragma once

#include "platform/Bundle.h"

#include <QLabel>
#include <QThreadPool>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <vector>

class QCheckBox;

namespace apps {

/// The interface of the product's pane: a check box for each menu extra that it ships, checked
/// while the menu bar has it. The pane is to be the one that the process has loaded, for the
/// library turns on what that one ships.
class MenuExtraSwitches final : public QWidget {
    Q_OBJECT

  public:
    /// @p isBarRunning is asked on another thread before the bar is, so that looking starts none.
    MenuExtraSwitches(const platform::Bundle& pane, std::function<bool()> isBarRunning);
    /// Waits for what is being turned on or off, for some seconds at most.
    ~MenuExtraSwitches() override;

    /// Asks the bar anew; what it says is shown later.
    void refresh();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    struct Switch {
        std::int32_t tag = 0;
        std::string identifier;
        QCheckBox* box = nullptr;
        bool isBusy = false; ///< being turned on or off
    };

    void addSwitch(const platform::Bundle& extra);
    void colourBoxes();
    void turn(std::size_t index, bool on);
    void turned(std::size_t index, bool wanted, bool loaded);
    bool isLoaded(const std::string& identifier) const;
    /// Runs on the one worker thread: the bar may take seconds.
    void later(std::function<void()> work);
    /// Runs on the main thread, unless this is gone by then. Worker thread.
    void showLater(std::function<void()> code);

    const std::function<bool()> isBarRunning_;
    std::vector<Switch> switches_;
    QLabel* message_ = nullptr;
    QThreadPool worker_;
};

} // namespace apps
