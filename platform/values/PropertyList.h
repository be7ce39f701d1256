#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform {

/// One value of a property list: a string, number, boolean, date, some bytes, an array of values or
/// a dictionary of them. A regular value of 16 bytes; a string of up to 15 bytes lies inside it. A
/// moved-from value is the empty string. Copying, comparing and destroying recurse over the
/// nesting.
class PropertyList {
  public:
    enum class Type { String, Integer, Real, Boolean, Date, Data, Array, Dictionary };

    /// A moment in UTC, in seconds since the start of 1970, by the Gregorian calendar.
    struct Date {
        std::int64_t seconds = 0;
        friend bool operator==(const Date&, const Date&) = default;
    };
    struct Data {
        std::vector<std::uint8_t> bytes;
        friend bool operator==(const Data&, const Data&) = default;
    };
    using Array = std::vector<PropertyList>;
    class Dictionary;

    /// The empty string.
    PropertyList() noexcept = default;
    PropertyList(std::string_view text);
    PropertyList(const std::string& text) : PropertyList(std::string_view(text)) {}
    PropertyList(const char* text) : PropertyList(std::string_view(text)) {}
    PropertyList(std::nullptr_t) = delete;
    PropertyList(std::same_as<bool> auto value) noexcept
        : kind_(value ? Kind::True : Kind::False) {}
    PropertyList(std::signed_integral auto value) noexcept { setInteger(value); }
    PropertyList(std::unsigned_integral auto value) noexcept
        requires(!std::same_as<decltype(value), bool>) {
        setUnsignedInteger(value);
    }
    PropertyList(std::floating_point auto value) noexcept { setReal(static_cast<double>(value)); }
    PropertyList(Date date) noexcept;
    PropertyList(Data data);
    PropertyList(Array array);
    PropertyList(Dictionary dictionary);

    PropertyList(const PropertyList& other);
    PropertyList(PropertyList&& other) noexcept
        : payload_(other.payload_), kind_(std::exchange(other.kind_, Kind::ShortString)) {}
    PropertyList& operator=(const PropertyList& other);
    PropertyList& operator=(PropertyList&& other) noexcept {
        PropertyList taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~PropertyList() {
        if (kind_ <= Kind::Dictionary)
            release();
    }
    void swap(PropertyList& other) noexcept {
        std::swap(payload_, other.payload_);
        std::swap(kind_, other.kind_);
    }

    Type type() const {
        constexpr std::array kTypes{Type::String,  Type::Data,    Type::Array, Type::Dictionary,
                                    Type::Integer, Type::Integer, Type::Real,  Type::Date,
                                    Type::Boolean, Type::Boolean};
        const auto kind = static_cast<std::size_t>(kind_);
        return kind < kTypes.size() ? kTypes[kind] : Type::String;
    }

    // Each gives nothing, or null, when the value is of another type. What they point to belongs to
    // this value and lives until it is assigned to, moved from or destroyed.

    std::optional<std::string_view> string() const {
        if (type() != Type::String)
            return std::nullopt;
        return text();
    }
    /// An integer that fits; every integer fits at least one of the two.
    std::optional<std::int64_t> integer() const;
    std::optional<std::uint64_t> unsignedInteger() const;
    std::optional<double> real() const;
    std::optional<bool> boolean() const;
    std::optional<Date> date() const;
    const Data* data() const;
    Data* data();
    const Array* array() const;
    Array* array();
    const Dictionary* dictionary() const;
    Dictionary* dictionary();

    /// Returns the value under @p key, or null if this is not a dictionary or has no such key.
    const PropertyList* find(std::string_view key) const;
    /// Returns the string under @p key, or an empty one if there is no string.
    std::string_view stringAt(std::string_view key) const;

    /// The same type and the same value: reals bit for bit, dictionaries in the same order.
    friend bool operator==(const PropertyList& left, const PropertyList& right);

  private:
    /// What the payload holds: up to Dictionary a pointer to what this value owns. A short string's
    /// length is added to ShortString.
    enum class Kind : std::uint8_t {
        LongString,
        Data,
        Array,
        Dictionary,
        Integer,
        LargeInteger,
        Real,
        Date,
        False,
        True,
        ShortString,
        LongestShortString = ShortString + 15,
    };
    using Payload = std::array<char, 15>;

    template <class T>
    T load() const noexcept {
        T value;
        // NOLINTNEXTLINE(bugprone-sizeof-expression): of a pointer, where T is one
        std::memcpy(&value, payload_.data(), sizeof(value));
        return value;
    }
    template <class T>
    void store(Kind kind, T value) noexcept;
    void setInteger(std::int64_t value) noexcept;
    void setUnsignedInteger(std::uint64_t value) noexcept;
    void setReal(double value) noexcept;
    void release() noexcept;
    /// Of a string. A long one lies behind its length in one block.
    std::string_view text() const noexcept {
        if (kind_ >= Kind::ShortString)
            return {payload_.data(),
                    static_cast<std::size_t>(kind_) - static_cast<std::size_t>(Kind::ShortString)};
        const char* block = load<const char*>();
        std::size_t length = 0;
        std::memcpy(&length, block, sizeof(length));
        return {block + sizeof(length), length};
    }

    alignas(8) Payload payload_{};
    Kind kind_ = Kind::ShortString;
};

/// Values by key, in the order in which the keys first came. Keys are looked for one after the
/// other.
class PropertyList::Dictionary {
  public:
    struct Entry {
        std::string key;
        PropertyList value;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    Dictionary() = default;
    /// Of several entries with one key the last value counts, in the place of the first.
    explicit Dictionary(std::vector<Entry> entries);
    Dictionary(std::initializer_list<Entry> entries) : Dictionary(std::vector<Entry>(entries)) {}

    const PropertyList* find(std::string_view key) const;
    PropertyList* find(std::string_view key);
    /// Replaces the key's value, or adds it at the end.
    void set(std::string_view key, PropertyList value);
    /// Whether there was such a key.
    bool erase(std::string_view key);

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    /// for (const auto &[key, value] : dictionary)
    auto begin() const { return entries_.cbegin(); }
    auto end() const { return entries_.cend(); }

    friend bool operator==(const Dictionary&, const Dictionary&) = default;

  private:
    std::vector<Entry> entries_;
};

} // namespace platform
