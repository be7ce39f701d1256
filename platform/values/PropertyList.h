#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

/// One value of a property list: a string, number, boolean, date, data, array or dictionary. A
/// regular value; a moved-from value is valid but unspecified. Copying, comparing and destroying
/// recurse into nested values. PropertyListService limits the depth of what it reads.
class PropertyList {
  public:
    enum class Type { String, Integer, Real, Boolean, Date, Data, Array, Dictionary };

    /// A moment in time: seconds since 1970-01-01 00:00:00 UTC.
    struct Date {
        std::int64_t seconds = 0;
        friend bool operator==(const Date&, const Date&) = default;
    };
    struct Data {
        std::vector<std::uint8_t> bytes;
        friend bool operator==(const Data&, const Data&) = default;
    };
    using Array = std::vector<PropertyList>;

    /// Values by key, in the order in which the keys were first added. Lookup is linear.
    class Dictionary {
      public:
        struct Entry;

        Dictionary() = default;
        /// If several entries have the same key, keeps the value of the last one at the position
        /// of the first.
        explicit Dictionary(std::vector<Entry> entries);
        Dictionary(std::initializer_list<Entry> entries);

        /// Returns the value under @p key, or null if there is no such key.
        const PropertyList* find(std::string_view key) const;
        PropertyList* find(std::string_view key);
        /// Replaces the value under @p key, or appends the key with this value.
        void set(std::string_view key, PropertyList value);
        /// Removes @p key. Returns whether it was present.
        bool erase(std::string_view key);

        std::size_t size() const;
        bool empty() const;
        /// Iterates over the entries: `for (const auto& [key, value] : dictionary)`.
        std::vector<Entry>::const_iterator begin() const;
        std::vector<Entry>::const_iterator end() const;

        /// Compares the entries in order.
        friend bool operator==(const Dictionary& left, const Dictionary& right);

      private:
        std::vector<Entry> entries_;
    };

    /// Creates the empty string.
    PropertyList() = default;
    PropertyList(std::string text);
    PropertyList(std::string_view text);
    PropertyList(const char* text);
    PropertyList(std::nullptr_t) = delete;
    PropertyList(std::same_as<bool> auto value) : value_(value) {}
    PropertyList(std::signed_integral auto value) : value_(signedValue(value)) {}
    PropertyList(std::unsigned_integral auto value) requires(!std::same_as<decltype(value), bool>)
        : value_(unsignedValue(value)) {}
    PropertyList(double value);
    PropertyList(Date date);
    PropertyList(Data data);
    PropertyList(Array array);
    PropertyList(Dictionary dictionary);

    PropertyList(const PropertyList& other);
    PropertyList(PropertyList&& other) noexcept;
    PropertyList& operator=(const PropertyList& other);
    PropertyList& operator=(PropertyList&& other) noexcept;
    ~PropertyList() = default;

    Type type() const;

    // Each accessor returns std::nullopt or null if the value has another type. Views and pointers
    // stay valid until this value is assigned to, moved from or destroyed.

    std::optional<std::string_view> string() const;
    /// Returns the integer if it is at most 2^63 - 1.
    std::optional<std::int64_t> integer() const;
    /// Returns the integer if it is not negative.
    std::optional<std::uint64_t> unsignedInteger() const;
    std::optional<double> real() const;
    std::optional<bool> boolean() const;
    std::optional<Date> date() const;
    const Data* data() const { return std::get_if<Data>(&value_); }
    Data* data() { return std::get_if<Data>(&value_); }
    const Array* array() const { return std::get_if<Array>(&value_); }
    Array* array() { return std::get_if<Array>(&value_); }
    const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }
    Dictionary* dictionary() { return std::get_if<Dictionary>(&value_); }

    /// Returns the value under @p key, or null if this is not a dictionary or has no such key.
    const PropertyList* find(std::string_view key) const;
    /// Returns the string under @p key, or an empty one if there is no string.
    std::string_view stringAt(std::string_view key) const;

    /// Compares type and value. Reals are compared bit for bit, so a NaN equals itself and 0.0 does
    /// not equal -0.0.
    friend bool operator==(const PropertyList& left, const PropertyList& right);

  private:
    /// std::uint64_t is used only for integers that std::int64_t cannot hold.
    using Value = std::variant<std::string, std::int64_t, std::uint64_t, double, bool, Date, Data,
                               Array, Dictionary>;
    static Value signedValue(std::int64_t number);
    static Value unsignedValue(std::uint64_t number);

    Value value_;
};

struct PropertyList::Dictionary::Entry {
    std::string key;
    PropertyList value;
    friend bool operator==(const Entry&, const Entry&) = default;
};

inline std::size_t PropertyList::Dictionary::size() const {
    return entries_.size();
}
inline bool PropertyList::Dictionary::empty() const {
    return entries_.empty();
}
inline auto PropertyList::Dictionary::begin() const -> std::vector<Entry>::const_iterator {
    return entries_.begin();
}
inline auto PropertyList::Dictionary::end() const -> std::vector<Entry>::const_iterator {
    return entries_.end();
}

} // namespace platform
