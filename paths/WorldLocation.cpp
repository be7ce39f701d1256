#include "paths/WorldLocation.h"

#include <algorithm>
#include <cmath>
#include <utility>

using platform::PropertyList;

namespace paths {
namespace {

enum Element : std::size_t {
    kCity,
    kCountry,
    kZone,
    kLatitude,
    kLongitude,
    kCountryCode,
    kDisplayName,
    kInBar,
    kBarFormat,
};

constexpr std::size_t kIdentityElements = 5;
constexpr std::size_t kNetFlag = 13;

std::optional<double> number(const PropertyList* value) {
    if (!value)
        return std::nullopt;
    if (const auto integer = value->integer())
        return static_cast<double>(*integer);
    return value->real();
}

} // namespace

WorldLocation::WorldLocation(PropertyList record) : record_(std::move(record)) {
    if (!record_.array())
        record_ = PropertyList::Array();
}

const PropertyList* WorldLocation::element(std::size_t index) const {
    const PropertyList::Array& elements = *record_.array();
    return index < elements.size() ? &elements[index] : nullptr;
}

std::string WorldLocation::text(std::size_t index) const {
    const PropertyList* value = element(index);
    return std::string(value ? value->string().value_or("") : "");
}

void WorldLocation::set(std::size_t index, PropertyList value) {
    PropertyList::Array& elements = *record_.array();
    if (elements.size() <= index)
        elements.resize(index + 1);
    elements[index] = std::move(value);
}

std::string WorldLocation::city() const {
    return text(kCity);
}
std::string WorldLocation::country() const {
    return text(kCountry);
}
std::string WorldLocation::zoneName() const {
    return text(kZone);
}
std::string WorldLocation::countryCode() const {
    return text(kCountryCode);
}

std::optional<Coordinates> WorldLocation::coordinates() const {
    const auto latitude = number(element(kLatitude));
    const auto longitude = number(element(kLongitude));
    // NaN fails both comparisons.
    if (!latitude || !longitude || !(std::abs(*latitude) <= 90) || !(std::abs(*longitude) <= 180))
        return std::nullopt;
    return Coordinates{*latitude, *longitude};
}

std::string WorldLocation::displayName() const {
    std::string chosen = text(kDisplayName);
    return chosen.empty() ? city() : chosen;
}

void WorldLocation::setDisplayName(std::string name) {
    set(kDisplayName, std::move(name));
}

bool WorldLocation::isInBar() const {
    const PropertyList* value = element(kInBar);
    return value && value->boolean().value_or(false);
}

void WorldLocation::setInBar(bool inBar) {
    set(kInBar, inBar);
}

std::string WorldLocation::barFormat() const {
    return text(kBarFormat);
}

void WorldLocation::setBarFormat(std::string format) {
    set(kBarFormat, std::move(format));
}

bool WorldLocation::isNet() const {
    return record_.array()->size() > kNetFlag;
}

bool WorldLocation::isSameLocation(const WorldLocation& other) const {
    const PropertyList::Array& mine = *record_.array();
    const PropertyList::Array& others = *other.record_.array();
    return mine.size() >= kIdentityElements && others.size() >= kIdentityElements &&
           std::equal(mine.begin(), mine.begin() + kIdentityElements, others.begin());
}

} // namespace paths
