#include "apps/shared/Json.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <utility>

using platform::PropertyList;
using Json = nlohmann::ordered_json;

namespace apps {
namespace {

Json jsonDate(PropertyList::Date date) {
    const std::time_t seconds = date.seconds;
    std::tm fields{};
    if (!::gmtime_r(&seconds, &fields))
        return nullptr;
    const long year = 1900L + fields.tm_year;
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%s%04ld-%02d-%02dT%02d:%02d:%02dZ",
                  year < 0 ? "-" : "", std::labs(year), fields.tm_mon + 1, fields.tm_mday,
                  fields.tm_hour, fields.tm_min, fields.tm_sec);
    return text.data();
}

std::string base64(const std::vector<std::uint8_t>& bytes) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto byte = [&](std::size_t j) { return i + j < bytes.size() ? bytes[i + j] : 0U; };
        const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (std::size_t j = 0; j < 4; ++j)
            text += i + j <= bytes.size() ? kDigits[bits >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

Json jsonValue(const PropertyList& value);

Json jsonArray(const PropertyList::Array& array) {
    Json::array_t elements;
    elements.reserve(array.size());
    for (const PropertyList& element : array)
        elements.push_back(jsonValue(element));
    return elements;
}

Json jsonObject(const PropertyList::Dictionary& dictionary) {
    Json::object_t members;
    members.reserve(dictionary.size());
    for (const auto& [key, element] : dictionary)
        members.emplace_back(key, jsonValue(element)); // emplace() searches for the key first
    return members;
}

Json jsonValue(const PropertyList& value) {
    using Type = PropertyList::Type;
    switch (value.type()) {
    case Type::String:
        return *value.string();
    case Type::Integer:
        return value.integer() ? Json(*value.integer()) : Json(*value.unsignedInteger());
    case Type::Real:
        return *value.real();
    case Type::Boolean:
        return *value.boolean();
    case Type::Date:
        return jsonDate(*value.date());
    case Type::Data:
        return base64(value.data()->bytes);
    case Type::Array:
        return jsonArray(*value.array());
    case Type::Dictionary:
        return jsonObject(*value.dictionary());
    }
    std::abort();
}

} // namespace

std::string jsonText(const PropertyList& value) {
    constexpr int kIndent = 2;
    constexpr bool kEnsureAscii = false;
    return jsonValue(value).dump(kIndent, ' ', kEnsureAscii, Json::error_handler_t::replace) + '\n';
}

} // namespace apps
