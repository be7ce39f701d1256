#pragma once

#include "extras/HalvexTimeMenu/ConvertPlaces.h"
#include "extras/HalvexTimeMenu/ConvertRange.h"
#include "extras/HalvexTimeMenu/ConvertScale.h"
#include "extras/clock/WorldClocks.h"
#include "platform/Preferences.h"
#include "platform/widgets/Button.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/ListBox.h"
#include "platform/widgets/Slider.h"
#include "platform/widgets/TextField.h"
#include "platform/widgets/ViewBox.h"
#include "ui/HUDWindow.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The panel "Convert": a time today or tomorrow, and what the clocks of the user's locations show
/// then. The time is set with a slider or typed. It is the local time or, if a location is selected
/// in the list, the time there. Main thread only.
class ConvertPanel : platform::NonCopyable {
  public:
    /// Creates no window yet. Stores the frame of the panel in @p settings under "ConvertFrame".
    explicit ConvertPanel(platform::Preferences settings);
    /// Removes the panel.
    ~ConvertPanel();

    /// Opens the panel with the present time, or brings it to the front if it is open. Does nothing
    /// if the desktop cannot create a window, which is logged.
    void show();
    bool isOpen() const { return isOpen_; }
    /// Returns null before show().
    const std::shared_ptr<HUDWindow>& window() const { return window_; }

  private:
    bool createWindow();
    void restoreFrame();
    void addTimeRow();
    void addSlider();
    void addList();
    void addBottomRow();
    template <class T>
    std::shared_ptr<T> add(std::shared_ptr<T> control, std::uint32_t mask);
    std::shared_ptr<platform::Button> addButton(const platform::Rect& frame,
                                                const std::string& title, std::uint32_t mask,
                                                std::function<void()> handler);

    void didClose();
    void restart();
    void setNow();
    void setInstant(std::int64_t instant);
    void step(int direction);
    void commitTime(const std::string& text);
    void select(std::optional<std::size_t> row);
    void copy();

    void loadPlaces();
    void showScale();
    void showTime();
    void showRows();
    void showError(const std::string& reason);
    std::string note();
    platform::ZoneRules zone() const;

    platform::Preferences settings_;
    extras::WorldClocks clocks_;
    ConvertRange range_;
    std::int64_t instant_ = 0;
    std::vector<ConvertPlace> places_;
    DayImages images_;
    std::size_t selected_ = 0; ///< in places_: where the clocks show the time in the field
    bool isOpen_ = false;
    std::shared_ptr<ConvertScale> scale_;
    std::shared_ptr<platform::ViewBox> errorMark_;
    std::shared_ptr<platform::TextField> field_;
    std::shared_ptr<platform::Label> day_;
    std::shared_ptr<platform::Slider> slider_;
    std::shared_ptr<platform::ListBox> list_;
    std::shared_ptr<platform::Label> note_;
    std::shared_ptr<HUDWindow> window_;
    std::unique_ptr<platform::Watch> zoneWatch_;
};
