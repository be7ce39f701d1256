#include "platform/values/PropertyList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>

namespace platform {
namespace {

template <class T>
std::optional<T> optionalCopy(const T* value) {
    return value ? std::optional(*value) : std::nullopt;
}

} // namespace

// Not in the class, where Dictionary::Entry is incomplete.
PropertyList::PropertyList(std::string text) : value_(std::move(text)) {}
PropertyList::PropertyList(std::string_view text) : value_(std::in_place_type<std::string>, text) {}
PropertyList::PropertyList(const char* text) : value_(std::in_place_type<std::string>, text) {}
PropertyList::PropertyList(double value) : value_(value) {}
PropertyList::PropertyList(Date date) : value_(date) {}
PropertyList::PropertyList(Data data) : value_(std::move(data)) {}
PropertyList::PropertyList(Array array) : value_(std::move(array)) {}
PropertyList::PropertyList(Dictionary dictionary) : value_(std::move(dictionary)) {}

// Not inline: GCC 12 would warn that parts of an inlined variant may be uninitialized.
PropertyList::PropertyList(const PropertyList& other) = default;
PropertyList::PropertyList(PropertyList&& other) noexcept = default;
PropertyList& PropertyList::operator=(const PropertyList& other) = default;
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept = default;

PropertyList::Value PropertyList::signedValue(std::int64_t number) {
    return number;
}

PropertyList::Value PropertyList::unsignedValue(std::uint64_t number) {
    if (std::in_range<std::int64_t>(number))
        return static_cast<std::int64_t>(number);
    return number;
}

PropertyList::Type PropertyList::type() const {
    constexpr std::array kTypes{Type::String, Type::Integer, Type::Integer,
                                Type::Real,   Type::Boolean, Type::Date,
                                Type::Data,   Type::Array,   Type::Dictionary};
    static_assert(kTypes.size() == std::variant_size_v<Value>);
    return kTypes[value_.index()];
}

std::optional<std::string_view> PropertyList::string() const {
    const auto* text = std::get_if<std::string>(&value_);
    return text ? std::optional<std::string_view>(*text) : std::nullopt;
}

std::optional<std::int64_t> PropertyList::integer() const {
    return optionalCopy(std::get_if<std::int64_t>(&value_));
}

std::optional<std::uint64_t> PropertyList::unsignedInteger() const {
    if (const auto number = integer(); number && *number >= 0)
        return static_cast<std::uint64_t>(*number);
    return optionalCopy(std::get_if<std::uint64_t>(&value_));
}

std::optional<double> PropertyList::real() const {
    return optionalCopy(std::get_if<double>(&value_));
}

std::optional<bool> PropertyList::boolean() const {
    return optionalCopy(std::get_if<bool>(&value_));
}

std::optional<PropertyList::Date> PropertyList::date() const {
    return optionalCopy(std::get_if<Date>(&value_));
}

const PropertyList* PropertyList::find(std::string_view key) const {
    const Dictionary* values = dictionary();
    return values ? values->find(key) : nullptr;
}

std::string_view PropertyList::stringAt(std::string_view key) const {
    const PropertyList* value = find(key);
    return value ? value->string().value_or(std::string_view()) : std::string_view();
}

bool operator==(const PropertyList& left, const PropertyList& right) {
    const auto leftReal = left.real();
    const auto rightReal = right.real();
    if (leftReal && rightReal)
        return std::bit_cast<std::uint64_t>(*leftReal) == std::bit_cast<std::uint64_t>(*rightReal);
    return left.value_ == right.value_;
}

PropertyList::Dictionary::Dictionary(std::vector<Entry> entries) : entries_(std::move(entries)) {
    std::vector<std::size_t> order(entries_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto key = [this](std::size_t index) -> const std::string& {
        return entries_[index].key;
    };
    std::ranges::stable_sort(order, {}, key);
    std::vector<bool> superseded(entries_.size());
    bool any = false;
    for (std::size_t i = order.size(); i-- > 1;) {
        if (key(order[i]) != key(order[i - 1]))
            continue;
        // Moves the last value step by step to the first entry with the same key.
        entries_[order[i - 1]].value = std::move(entries_[order[i]].value);
        superseded[order[i]] = any = true;
    }
    if (!any)
        return;
    std::size_t index = 0;
    std::erase_if(entries_, [&](const Entry&) { return superseded[index++]; });
}

PropertyList::Dictionary::Dictionary(std::initializer_list<Entry> entries)
    : Dictionary(std::vector<Entry>(entries)) {}

const PropertyList* PropertyList::Dictionary::find(std::string_view key) const {
    const auto entry = std::ranges::find(entries_, key, &Entry::key);
    return entry == entries_.end() ? nullptr : &entry->value;
}

PropertyList* PropertyList::Dictionary::find(std::string_view key) {
    const auto entry = std::ranges::find(entries_, key, &Entry::key);
    return entry == entries_.end() ? nullptr : &entry->value;
}

void PropertyList::Dictionary::set(std::string_view key, PropertyList value) {
    if (PropertyList* present = find(key))
        *present = std::move(value);
    else
        entries_.push_back({std::string(key), std::move(value)});
}

bool PropertyList::Dictionary::erase(std::string_view key) {
    return std::erase_if(entries_, [key](const Entry& entry) { return entry.key == key; }) > 0;
}

bool operator==(const PropertyList::Dictionary& left, const PropertyList::Dictionary& right) {
    return left.entries_ == right.entries_;
}

} // namespace platform
