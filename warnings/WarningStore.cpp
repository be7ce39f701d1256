#include "warnings/WarningStore.h"

#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/Operation.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <random>
#include <utility>

using platform::PropertyList;

namespace warnings {
namespace {

constexpr const char* kWarnings = "Warnings";
constexpr const char* kIdentifier = "Identifier";
constexpr const char* kTitle = "Title";
constexpr const char* kTime = "Time";
constexpr const char* kSince = "Since";

std::string newIdentifier() {
    std::random_device random;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%08x%08x", random(), random());
    return text.data();
}

std::optional<Warning> warningFrom(const PropertyList& entry) {
    const PropertyList* since = entry.find(kSince);
    const auto time = WarningTime::parse(entry.stringAt(kTime));
    std::string identifier(entry.stringAt(kIdentifier));
    if (identifier.empty() || !time || !since || !since->date())
        return std::nullopt;
    return Warning{std::move(identifier), std::string(entry.stringAt(kTitle)), *time,
                   since->date()->seconds};
}

void setSince(PropertyList& entry, std::int64_t since) {
    entry.dictionary()->set(kSince, PropertyList::Date{since});
}

} // namespace

WarningStore::WarningStore()
    : WarningStore(platform::makeFilePreferences(HalvexFilePaths::ovxGetUsersHalvexProSupportDir())
                       ->domain(HalvexRecurringTimers2File)) {}

WarningStore::WarningStore(std::shared_ptr<platform::PreferencesDomain> domain)
    : domain_(std::move(domain)) {}

std::vector<Warning> WarningStore::warnings() {
    const auto values = domain_->values();
    const PropertyList* list = values->find(kWarnings);
    std::vector<Warning> result;
    std::string unusable;
    for (const PropertyList& entry : list && list->array() ? *list->array() : Entries()) {
        if (auto warning = warningFrom(entry))
            result.push_back(std::move(*warning));
        else
            unusable = entry.stringAt(kTime);
    }
    if (list && !list->array())
        domain_->logInvalid(kWarnings, "it is not an array");
    else if (list && result.size() < list->array()->size())
        domain_->logInvalid(kWarnings, "it contains an unusable warning \"" + unusable + '"');
    else
        domain_->resetInvalid(kWarnings);
    return result;
}

bool WarningStore::update(const std::function<void(Entries&)>& change) {
    return platform::guardedOperation([&] {
        return domain_->update([&](PropertyList::Dictionary& values) {
            PropertyList* list = values.find(kWarnings);
            Entries entries = list && list->array() ? std::move(*list->array()) : Entries();
            change(entries);
            values.set(kWarnings, std::move(entries));
        });
    });
}

bool WarningStore::add(std::string title, const WarningTime& time, std::int64_t now) {
    return add(Warning{newIdentifier(), std::move(title), time, now});
}

bool WarningStore::add(const Warning& warning) {
    return update([&](Entries& entries) {
        std::erase_if(entries, [&](const PropertyList& entry) {
            return entry.stringAt(kIdentifier) == warning.identifier;
        });
        entries.emplace_back(PropertyList::Dictionary{{kIdentifier, warning.identifier},
                                                      {kTitle, warning.title},
                                                      {kTime, warning.time.text()},
                                                      {kSince, PropertyList::Date{warning.since}}});
    });
}

bool WarningStore::remove(const std::vector<std::string>& identifiers) {
    return update([&](Entries& entries) {
        std::erase_if(entries, [&](const PropertyList& entry) {
            return std::ranges::count(identifiers, entry.stringAt(kIdentifier)) > 0;
        });
    });
}

bool WarningStore::recordRung(const std::map<std::string, std::int64_t>& rung) {
    return update([&](Entries& entries) {
        const auto hasRungLast = [&](const PropertyList& entry) {
            const auto warning = warningFrom(entry);
            return warning && !warning->time.isRecurring() && rung.contains(warning->identifier);
        };
        std::erase_if(entries, hasRungLast);
        for (PropertyList& entry : entries) {
            const auto warning = warningFrom(entry);
            const auto found = warning ? rung.find(warning->identifier) : rung.end();
            if (found != rung.end() && warning->since < found->second)
                setSince(entry, found->second);
        }
    });
}

bool WarningStore::limitSince(std::int64_t latest) {
    return update([&](Entries& entries) {
        for (PropertyList& entry : entries)
            if (const auto warning = warningFrom(entry); warning && warning->since > latest)
                setSince(entry, latest);
    });
}

std::unique_ptr<platform::Watch> WarningStore::onChange(std::function<void()> handler) {
    return domain_->onChange(
        [handler = std::move(handler)](const std::vector<std::string>&) { handler(); });
}

} // namespace warnings
