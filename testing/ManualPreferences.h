#pragma once

#include "platform/Preferences.h"
#include "platform/runtime/HandlerList.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvextest {

/// Keeps preferences in memory. Replaces the process's preferences for the lifetime of the object.
class ManualPreferences final : public platform::PreferencesService {
  public:
    /// The preferences under an identifier, usually that of the item's bundle. Changing them is a
    /// change by another program: the item's handlers are called immediately.
    platform::Preferences operator[](std::string_view identifier) {
        return platform::Preferences(domain(identifier));
    }

    std::shared_ptr<platform::PreferencesDomain> domain(std::string_view identifier) override {
        auto& domain = domains_[std::string(identifier)];
        if (!domain)
            domain = std::make_shared<Domain>();
        return domain;
    }

  private:
    class Domain final : public platform::PreferencesDomain {
      public:
        std::string file() const override { return {}; }
        std::shared_ptr<const platform::PropertyList::Dictionary> values() override {
            return std::make_shared<platform::PropertyList::Dictionary>(values_);
        }
        bool write(const platform::PreferenceChanges& changes) override {
            std::vector<std::string> keys;
            for (const auto& [key, value] : changes.list()) {
                if (value)
                    values_.set(key, *value);
                else
                    values_.erase(key);
                keys.push_back(key);
            }
            handlers_.call(keys);
            return true;
        }
        bool
        update(const std::function<void(platform::PropertyList::Dictionary&)>& change) override {
            platform::PropertyList::Dictionary values = values_;
            change(values);
            platform::PreferenceChanges changes;
            for (const auto& [key, value] : values_)
                if (!values.find(key))
                    changes.remove(key);
            for (const auto& [key, value] : values)
                if (const auto* old = values_.find(key); !old || *old != value)
                    changes.set(key, value);
            return changes.list().empty() || write(changes);
        }
        std::unique_ptr<platform::Watch> onChange(Handler handler) override {
            return handlers_.add(std::move(handler));
        }

      private:
        platform::PropertyList::Dictionary values_;
        platform::HandlerList<std::vector<std::string>> handlers_;
    };

    std::map<std::string, std::shared_ptr<Domain>, std::less<>> domains_;
    platform::ScopedService<platform::PreferencesService> service_{*this};
};

} // namespace halvextest
