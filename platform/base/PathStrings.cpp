#include "platform/base/PathStrings.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace platform {
namespace {

std::string normalized(std::string_view path) {
    std::string result;
    for (const char c : path) {
        if (c != '/' || result.empty() || result.back() != '/')
            result += c;
    }
    if (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

constexpr std::string_view kFileScheme = "file:";

bool isPlainInURL(char c) {
    constexpr std::string_view kMarks = "-_.~/";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           kMarks.find(c) != std::string_view::npos;
}

/// Returns std::nullopt for malformed percent-encoding and for an encoded null byte.
std::optional<std::string> percentDecoded(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        if (text.front() != '%') {
            result += text.front();
            text.remove_prefix(1);
            continue;
        }
        unsigned byte = 0;
        const std::string_view digits = text.substr(1, 2);
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (error != std::errc() || end != digits.data() + 2 || byte == 0)
            return std::nullopt;
        result += static_cast<char>(byte);
        text.remove_prefix(3);
    }
    return result;
}

} // namespace

std::string appendingPathComponent(std::string_view path, std::string_view component) {
    if (path.empty())
        return normalized(component);
    return normalized(std::string(path) + '/' + std::string(component));
}

std::string lastPathComponent(std::string_view path) {
    const std::string whole = normalized(path);
    const auto slash = whole.rfind('/');
    return slash == std::string::npos || whole.size() == 1 ? whole : whole.substr(slash + 1);
}

std::string deletingLastPathComponent(std::string_view path) {
    const std::string whole = normalized(path);
    const auto slash = whole.rfind('/');
    if (slash == std::string::npos)
        return {};
    return whole.substr(0, std::max<std::size_t>(slash, 1));
}

std::string pathExtension(std::string_view path) {
    const std::string name = lastPathComponent(path);
    const auto dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? std::string() : name.substr(dot + 1);
}

std::string appendingPathExtension(std::string_view path, std::string_view extension) {
    std::string whole = normalized(path);
    if (whole.empty() || whole == "/")
        return whole;
    return whole.append(1, '.').append(extension);
}

std::string percentEncodedPath(std::string_view path) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPlainInURL(c))
            result += c;
        else
            result.append({'%', kDigits[byte >> 4U], kDigits[byte & 15U]});
    }
    return result;
}

std::optional<std::string> fileURLWithPath(std::string_view path) {
    if (!path.starts_with('/'))
        return std::nullopt;
    return "file://" + percentEncodedPath(normalized(path));
}

bool isFileURL(std::string_view url) {
    return std::ranges::equal(url.substr(0, kFileScheme.size()), kFileScheme, {}, [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
}

std::optional<std::string> pathOfFileURL(std::string_view url) {
    if (!isFileURL(url))
        return std::nullopt;
    url.remove_prefix(kFileScheme.size());
    if (url.starts_with("//")) {
        const auto slash = std::min(url.find('/', 2), url.size());
        const std::string_view host = url.substr(2, slash - 2);
        if (!host.empty() && host != "localhost")
            return std::nullopt;
        url.remove_prefix(slash);
    }
    const auto path = percentDecoded(url.substr(0, url.find_first_of("?#")));
    return path && path->starts_with('/') ? std::optional(normalized(*path)) : std::nullopt;
}

} // namespace platform
