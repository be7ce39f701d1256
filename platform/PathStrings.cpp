#include "platform/PathStrings.h"

#include "platform/FileManager.h"

#include <algorithm>
#include <optional>

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

std::string expandingTildeInPath(std::string_view path) {
    if (!path.starts_with('~'))
        return std::string(path);
    const std::string_view user = path.substr(1, path.find('/') - 1);
    const std::optional<std::string> home =
        user.empty() ? fileManager().homeDirectory()
                     : fileManager().homeDirectoryForUser(std::string(user));
    return home ? appendingPathComponent(*home, path.substr(1 + user.size())) : std::string(path);
}

} // namespace platform
