#pragma once

#include "platform/base/NonCopyable.h"
#include "ui/HUDWindow.h"
#include "warnings/WarningTime.h"

#include <functional>
#include <memory>
#include <string>

namespace platform {
class Button;
class Label;
class TextField;
} // namespace platform

/// A small panel for a warning with a title and a time that are not in the menu. Main thread only.
class WarningPanel : platform::NonCopyable {
  public:
    /// Sets a warning. Returns false if it cannot be saved.
    using Setter = std::function<bool(const std::string& title, const warnings::WarningTime& time)>;

    explicit WarningPanel(Setter setter);
    ~WarningPanel();

    /// Shows the panel with @p time, as WarningTime::parse accepts it, and with an empty title.
    /// Does nothing if the desktop cannot create a window.
    void show(const std::string& time);
    /// Returns the panel's window, null until it has been shown.
    const std::shared_ptr<HUDWindow>& window() const { return window_; }

  private:
    bool createWindow();
    std::shared_ptr<platform::TextField> addField(double bottom, const std::string& name);
    std::shared_ptr<platform::Button> addButton(double left, const std::string& title,
                                                std::function<void()> handler);
    void addHint();
    template <class T>
    void add(const std::shared_ptr<T>& control);
    void timeChanged();
    void set(bool everyDay);

    Setter setter_;
    std::shared_ptr<HUDWindow> window_;
    std::shared_ptr<platform::TextField> title_;
    std::shared_ptr<platform::TextField> time_;
    std::shared_ptr<platform::Label> hint_;
    std::shared_ptr<platform::Button> set_;
    std::shared_ptr<platform::Button> setEveryDay_;
};
