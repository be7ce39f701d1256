#include "platform/Wireless.h"

#include "platform/Log.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

class NoWireless final : public Wireless {
  public:
    const WirelessStatus& status() const override {
        static const WirelessStatus kNoAdapter{.isReady = true};
        return kNoAdapter;
    }
    std::unique_ptr<Watch> observe(std::function<void()>) override {
        return std::make_unique<Watch>();
    }
    void scan() override {}
    bool connect(const std::string&, const WirelessNetwork&) override { return refuse(); }
    bool disconnect(const std::string&) override { return refuse(); }
    bool setRadio(WirelessRadio) override { return refuse(); }

  private:
    static bool refuse() {
        logLine("wireless not changed: this program has no access to the adapters");
        return false;
    }
};

Wireless& noWireless() {
    static NoWireless service;
    return service;
}

constinit ServiceSlot<Wireless> slot{"Wireless", noWireless};

} // namespace

Wireless::~Wireless() = default;

Wireless& wireless() {
    return slot.get();
}

template <>
Wireless* exchangeService<Wireless>(Wireless* service) {
    return slot.exchange(service);
}

} // namespace platform
