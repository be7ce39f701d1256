#include "platform/values/PropertyList.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <numeric>

namespace platform {
namespace {

/// A long string lies behind its length in one block.
char* makeStringBlock(std::string_view text) {
    const std::size_t length = text.size();
    auto block = std::make_unique_for_overwrite<char[]>(sizeof(length) + length);
    std::memcpy(block.get(), &length, sizeof(length));
    std::memcpy(block.get() + sizeof(length), text.data(), length);
    return block.release();
}

} // namespace

static_assert(sizeof(PropertyList) == 16);

template <class T>
void PropertyList::store(Kind kind, T value) noexcept {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): of a pointer, where T is one
    std::memcpy(payload_.data(), &value, sizeof(value));
    kind_ = kind;
}

PropertyList::PropertyList(std::string_view text) {
    if (text.size() > std::tuple_size_v<Payload>) {
        store(Kind::LongString, makeStringBlock(text));
        return;
    }
    std::copy(text.begin(), text.end(), payload_.begin());
    kind_ = static_cast<Kind>(static_cast<std::size_t>(Kind::ShortString) + text.size());
}

PropertyList::PropertyList(Date date) noexcept {
    store(Kind::Date, date.seconds);
}

PropertyList::PropertyList(Data data) {
    store(Kind::Data, std::make_unique<Data>(std::move(data)).release());
}

PropertyList::PropertyList(Array array) {
    store(Kind::Array, std::make_unique<Array>(std::move(array)).release());
}

PropertyList::PropertyList(Dictionary dictionary) {
    store(Kind::Dictionary, std::make_unique<Dictionary>(std::move(dictionary)).release());
}

PropertyList::PropertyList(const PropertyList& other) {
    switch (other.kind_) {
    case Kind::LongString:
        store(other.kind_, makeStringBlock(other.text()));
        break;
    case Kind::Data:
        store(other.kind_, std::make_unique<Data>(*other.data()).release());
        break;
    case Kind::Array:
        store(other.kind_, std::make_unique<Array>(*other.array()).release());
        break;
    case Kind::Dictionary:
        store(other.kind_, std::make_unique<Dictionary>(*other.dictionary()).release());
        break;
    default:
        payload_ = other.payload_;
        kind_ = other.kind_;
    }
}

PropertyList& PropertyList::operator=(const PropertyList& other) {
    PropertyList copy(other);
    swap(copy);
    return *this;
}

void PropertyList::release() noexcept {
    switch (kind_) {
    case Kind::LongString:
        std::default_delete<char[]>()(load<char*>());
        break;
    case Kind::Data:
        std::default_delete<Data>()(load<Data*>());
        break;
    case Kind::Array:
        std::default_delete<Array>()(load<Array*>());
        break;
    case Kind::Dictionary:
        std::default_delete<Dictionary>()(load<Dictionary*>());
        break;
    default:
        break;
    }
}

void PropertyList::setInteger(std::int64_t value) noexcept {
    store(Kind::Integer, value);
}

void PropertyList::setUnsignedInteger(std::uint64_t value) noexcept {
    constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    store(value > kLargest ? Kind::LargeInteger : Kind::Integer, value);
}

void PropertyList::setReal(double value) noexcept {
    store(Kind::Real, value);
}

std::optional<std::int64_t> PropertyList::integer() const {
    if (kind_ != Kind::Integer)
        return std::nullopt;
    return load<std::int64_t>();
}

std::optional<std::uint64_t> PropertyList::unsignedInteger() const {
    if (kind_ != Kind::LargeInteger && integer().value_or(-1) < 0)
        return std::nullopt;
    return load<std::uint64_t>();
}

std::optional<double> PropertyList::real() const {
    if (kind_ != Kind::Real)
        return std::nullopt;
    return load<double>();
}

std::optional<bool> PropertyList::boolean() const {
    if (type() != Type::Boolean)
        return std::nullopt;
    return kind_ == Kind::True;
}

std::optional<PropertyList::Date> PropertyList::date() const {
    if (kind_ != Kind::Date)
        return std::nullopt;
    return Date{load<std::int64_t>()};
}

const PropertyList::Data* PropertyList::data() const {
    return kind_ == Kind::Data ? load<const Data*>() : nullptr;
}

PropertyList::Data* PropertyList::data() {
    return kind_ == Kind::Data ? load<Data*>() : nullptr;
}

const PropertyList::Array* PropertyList::array() const {
    return kind_ == Kind::Array ? load<const Array*>() : nullptr;
}

PropertyList::Array* PropertyList::array() {
    return kind_ == Kind::Array ? load<Array*>() : nullptr;
}

const PropertyList::Dictionary* PropertyList::dictionary() const {
    return kind_ == Kind::Dictionary ? load<const Dictionary*>() : nullptr;
}

PropertyList::Dictionary* PropertyList::dictionary() {
    return kind_ == Kind::Dictionary ? load<Dictionary*>() : nullptr;
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
    using Kind = PropertyList::Kind;
    if (left.kind_ != right.kind_)
        return false;
    switch (left.kind_) {
    case Kind::Data:
        return *left.data() == *right.data();
    case Kind::Array:
        return *left.array() == *right.array();
    case Kind::Dictionary:
        return *left.dictionary() == *right.dictionary();
    case Kind::Integer:
    case Kind::LargeInteger:
    case Kind::Real:
    case Kind::Date:
        return left.load<std::uint64_t>() == right.load<std::uint64_t>();
    case Kind::False:
    case Kind::True:
        return true;
    default:
        return left.text() == right.text();
    }
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
        // The last value moves down, one by one, to the first of the entries with its key.
        entries_[order[i - 1]].value = std::move(entries_[order[i]].value);
        superseded[order[i]] = any = true;
    }
    if (!any)
        return;
    std::size_t index = 0;
    std::erase_if(entries_, [&](const Entry&) { return superseded[index++]; });
}

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

} // namespace platform
