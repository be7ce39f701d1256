#include "platform/Preferences.h"

#include "platform/Defaults.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<PreferencesService> slot{"PreferencesService", defaults::preferences};

PropertyList arrayOf(const std::vector<std::string>& values) {
    return PropertyList::Array(values.begin(), values.end());
}

std::optional<double> realOrInteger(const PropertyList& value) {
    if (const auto integer = value.integer())
        return static_cast<double>(*integer);
    return value.real();
}

std::optional<std::vector<std::string>> stringArray(const PropertyList& value) {
    if (!value.array())
        return std::nullopt;
    std::vector<std::string> result;
    for (const PropertyList& element : *value.array()) {
        if (!element.string())
            return std::nullopt;
        result.emplace_back(*element.string());
    }
    return result;
}

} // namespace

PreferenceChanges& PreferenceChanges::set(std::string key, PropertyList value) {
    changes_.push_back({std::move(key), std::move(value)});
    return *this;
}

PreferenceChanges& PreferenceChanges::set(std::string key, const std::vector<std::string>& values) {
    return set(std::move(key), arrayOf(values));
}

PreferenceChanges& PreferenceChanges::remove(std::string key) {
    changes_.push_back({std::move(key), std::nullopt});
    return *this;
}

PreferencesDomain::~PreferencesDomain() = default;

void PreferencesDomain::logInvalid(std::string_view key, std::string_view reason) {
    if (invalid_.emplace(key).second)
        logLine("cannot use preference %@ in %@: %@", key, file(), reason);
}

void PreferencesDomain::resetInvalid(std::string_view key) {
    if (const auto found = invalid_.find(key); found != invalid_.end())
        invalid_.erase(found);
}

Preferences::Preferences(std::shared_ptr<PreferencesDomain> domain, std::string prefix)
    : domain_(std::move(domain)), prefix_(std::move(prefix)) {}

std::string Preferences::file() const {
    return guardedOperation([&] { return domain_ ? domain_->file() : std::string(); });
}

template <class Result, class Read>
Result Preferences::typed(std::string_view key, const char* type, const Result& fallback,
                          const Read& read) const {
    return guardedOperation([&]() -> Result {
        if (!domain_)
            return fallback;
        const std::string name = fullKey(key);
        const auto values = domain_->values();
        const PropertyList* const value = values->find(name);
        std::optional<Result> result;
        if (value)
            result = read(*value);
        if (value && !result)
            domain_->logInvalid(name, std::string("it is not ") + type);
        else
            domain_->resetInvalid(name);
        return result ? std::move(*result) : fallback;
    });
}

bool Preferences::boolean(std::string_view key, bool fallback) const {
    return typed(key, "a boolean", fallback, [](const auto& value) { return value.boolean(); });
}

std::int64_t Preferences::integer(std::string_view key, std::int64_t fallback) const {
    return typed(key, "an integer", fallback, [](const auto& value) { return value.integer(); });
}

double Preferences::real(std::string_view key, double fallback) const {
    return typed(key, "a number", fallback, realOrInteger);
}

std::string Preferences::string(std::string_view key, std::string_view fallback) const {
    return guardedOperation([&] {
        return typed(key, "a string", std::string(fallback), [](const auto& value) {
            const auto text = value.string();
            return text ? std::optional<std::string>(*text) : std::nullopt;
        });
    });
}

std::vector<std::string> Preferences::strings(std::string_view key,
                                              const std::vector<std::string>& fallback) const {
    return typed(key, "an array of strings", fallback, stringArray);
}

PropertyList::Data Preferences::data(std::string_view key,
                                     const PropertyList::Data& fallback) const {
    return typed(key, "data", fallback, [](const auto& value) {
        return value.data() ? std::optional(*value.data()) : std::nullopt;
    });
}

std::optional<PropertyList> Preferences::value(std::string_view key) const {
    return guardedOperation([&]() -> std::optional<PropertyList> {
        if (!domain_)
            return std::nullopt;
        const auto values = domain_->values();
        const PropertyList* const value = values->find(fullKey(key));
        return value ? std::optional(*value) : std::nullopt;
    });
}

PropertyList::Dictionary Preferences::values() const {
    return guardedOperation([&] {
        std::vector<PropertyList::Dictionary::Entry> entries;
        if (domain_) {
            const auto values = domain_->values();
            for (const auto& [key, value] : *values)
                if (key.starts_with(prefix_))
                    entries.push_back({key.substr(prefix_.size()), value});
        }
        return PropertyList::Dictionary(std::move(entries));
    });
}

bool Preferences::write(const PreferenceChanges& changes) const {
    return guardedOperation([&] {
        if (!domain_ || prefix_.empty())
            return domain_ && domain_->write(changes);
        PreferenceChanges prefixed;
        for (const auto& [key, value] : changes.list()) {
            if (value)
                prefixed.set(fullKey(key), *value);
            else
                prefixed.remove(fullKey(key));
        }
        return domain_->write(prefixed);
    });
}

bool Preferences::set(std::string_view key, PropertyList value) const {
    return guardedOperation(
        [&] { return write(PreferenceChanges().set(std::string(key), std::move(value))); });
}

bool Preferences::set(std::string_view key, const std::vector<std::string>& values) const {
    return guardedOperation([&] { return set(key, arrayOf(values)); });
}

bool Preferences::remove(std::string_view key) const {
    return guardedOperation([&] { return write(PreferenceChanges().remove(std::string(key))); });
}

std::unique_ptr<Watch> Preferences::onChange(PreferencesDomain::Handler handler) const {
    if (!domain_ || prefix_.empty())
        return domain_ ? domain_->onChange(std::move(handler)) : nullptr;
    return domain_->onChange(
        [prefix = prefix_, handler = std::move(handler)](const std::vector<std::string>& keys) {
            std::vector<std::string> own;
            for (const std::string& key : keys)
                if (key.starts_with(prefix))
                    own.push_back(key.substr(prefix.size()));
            if (!own.empty())
                handler(own);
        });
}

PreferencesService::~PreferencesService() = default;

PreferencesService& preferencesService() {
    return slot.get();
}

template <>
PreferencesService* exchangeService<PreferencesService>(PreferencesService* service) {
    return slot.exchange(service);
}

Preferences preferences(std::string_view identifier) {
    return guardedOperation([&] { return Preferences(preferencesService().domain(identifier)); });
}

} // namespace platform
