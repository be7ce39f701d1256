#include "platform/Applications.h"

#include "platform/Log.h"
#include "platform/base/ServiceSlot.h"

#include <utility>

namespace platform {
namespace {

class NoApplications final : public Applications {
  public:
    std::vector<RunningApplication> running() override {
        logOnce();
        return {};
    }
    bool providesList() const override { return false; }
    std::unique_ptr<Watch> observe(std::function<void()>) override {
        logOnce();
        return std::make_unique<Watch>();
    }
    std::shared_ptr<Image> icon(const std::string&, double) override { return nullptr; }
    std::optional<DesktopEntry> desktopEntry(const std::string&) override { return std::nullopt; }
    bool activate(const std::string&) override { return false; }
    bool activateWindow(std::uint64_t) override { return false; }
    bool hide(const std::string&) override { return false; }
    bool hideOthers(const std::string&) override { return false; }
    bool show(const std::string&) override { return false; }
    bool quit(const std::string&) override { return false; }
    bool launch(const std::string& identifier, const std::vector<std::string>&) override {
        logLine("cannot launch %@: this program has no desktop", identifier);
        return false;
    }

  private:
    void logOnce() {
        if (!std::exchange(hasLogged_, true))
            logLine("applications are not listed: this program has no desktop");
    }

    bool hasLogged_ = false;
};

Applications& noApplications() {
    static NoApplications service;
    return service;
}

constinit ServiceSlot<Applications> slot{"Applications", noApplications};

} // namespace

Applications::~Applications() = default;

Applications& applications() {
    return slot.get();
}

template <>
Applications* exchangeService<Applications>(Applications* service) {
    return slot.exchange(service);
}

} // namespace platform
