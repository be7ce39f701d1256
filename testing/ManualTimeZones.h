#pragma once

#include "platform/TimeZones.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvextest {

/// Zones with rules that the test sets. The system's zone is UTC until setLocal.
class ManualTimeZones final : public platform::TimeZones {
  public:
    /// Adds or replaces a zone. @p rules are in the format of the environment variable TZ.
    void add(const std::string& name, std::string_view rules) {
        zones_[name] = platform::ZoneRules::parse(rules).value();
    }
    /// Makes a zone that has been added the system's, and calls the handlers of watchLocal.
    void setLocal(const std::string& name) {
        local_ = name;
        for (const auto& handler : std::vector(handlers_))
            if (std::ranges::count(handlers_, handler) > 0)
                (*handler)();
    }

    std::optional<platform::ZoneRules> zone(std::string_view name) override {
        const auto found = zones_.find(name);
        return found == zones_.end() ? std::nullopt : std::optional(found->second);
    }
    std::vector<std::string> names() override {
        std::vector<std::string> result;
        for (const auto& [name, rules] : zones_)
            result.push_back(name);
        return result;
    }
    platform::ZoneRules local() override { return zone(local_).value_or(platform::ZoneRules()); }
    std::string localName() override { return local_; }
    std::unique_ptr<platform::Watch> watchLocal(std::function<void()> handler) override {
        handlers_.push_back(std::make_shared<std::function<void()>>(std::move(handler)));
        return std::make_unique<Registration>(*this, handlers_.back());
    }

  private:
    using Handler = std::shared_ptr<std::function<void()>>;

    struct Registration final : platform::Watch {
        Registration(ManualTimeZones& owner, Handler one) : zones(owner), handler(std::move(one)) {}
        ~Registration() override { std::erase(zones.handlers_, handler); }

        ManualTimeZones& zones;
        Handler handler;
    };

    std::map<std::string, platform::ZoneRules, std::less<>> zones_;
    std::string local_ = "UTC";
    std::vector<Handler> handlers_;
    platform::ScopedService<platform::TimeZones> service_{*this};
};

} // namespace halvextest
