#include "platform/Appearance.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

class LightAppearance final : public Appearance {
  public:
    bool isDark() const override { return false; }
    std::optional<Color> accentColor() override { return std::nullopt; }
    bool prefersHighContrast() override { return false; }
    std::unique_ptr<Watch> onChange(std::function<void()>) override {
        return std::make_unique<Watch>();
    }
};

Appearance& lightAppearance() {
    static LightAppearance service;
    return service;
}

constinit ServiceSlot<Appearance> slot{"Appearance", lightAppearance};

} // namespace

Appearance::~Appearance() = default;

Appearance& appearance() {
    return slot.get();
}

template <>
Appearance* exchangeService<Appearance>(Appearance* service) {
    return slot.exchange(service);
}

} // namespace platform
