#pragma once

#include "platform/Appearance.h"
#include "platform/runtime/HandlerList.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace halvextest {

/// An appearance that changes only in the setters. Replaces the process's appearance for the
/// lifetime of the object.
class ManualAppearance final : public platform::Appearance {
  public:
    bool isDark() const override { return dark_; }
    std::optional<platform::Color> accentColor() override { return accent_; }
    bool prefersHighContrast() override { return highContrast_; }
    std::unique_ptr<platform::Watch> onChange(std::function<void()> handler) override {
        return handlers_.add(std::move(handler));
    }

    // These call the handlers.

    void setDark(bool dark) { change(dark_, dark); }
    void setAccentColor(std::optional<platform::Color> color) { change(accent_, color); }
    void setHighContrast(bool high) { change(highContrast_, high); }

  private:
    template <class Value>
    void change(Value& value, const Value& newValue) {
        value = newValue;
        handlers_.call();
    }

    bool dark_ = false;
    bool highContrast_ = false;
    std::optional<platform::Color> accent_;
    platform::HandlerList<> handlers_;
    platform::ScopedService<platform::Appearance> service_{*this};
};

} // namespace halvextest
