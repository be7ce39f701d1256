#include "platform/posix/SymbolicLinks.h"

#include "platform/base/PathStrings.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <limits.h>
#include <memory>
#include <unistd.h>

namespace platform::posix {
namespace {

constexpr int kMaximumLinks = 40;

} // namespace

std::optional<std::string> linkTarget(int folder, const std::string& name) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlinkat(folder, name.c_str(), target.data(), target.size());
    if (length < 0)
        return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

std::optional<std::string> linkTarget(const std::string& path) {
    return linkTarget(AT_FDCWD, path);
}

std::optional<std::string> finalTarget(std::string path) {
    for (int links = 0; links <= kMaximumLinks; ++links) {
        const auto target = linkTarget(path);
        if (!target)
            return path;
        path = target->starts_with('/') ? *target : path.substr(0, path.rfind('/') + 1) + *target;
    }
    return std::nullopt;
}

std::optional<std::string> realPath(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), std::free);
    return real ? std::optional<std::string>(real.get()) : std::nullopt;
}

std::optional<std::string> PathWalk::next() {
    while (!pending_.empty()) {
        const std::string component = std::move(pending_.back());
        pending_.pop_back();
        if (component == "..")
            folder_ = deletingLastPathComponent(folder_);
        else if (!component.empty() && component != ".")
            return appendingPathComponent(folder_, component);
    }
    return std::nullopt;
}

bool PathWalk::follow(std::string_view target) {
    if (++links_ > kMaximumLinks)
        return false;
    if (target.starts_with('/'))
        folder_ = "/";
    push(target);
    return true;
}

void PathWalk::push(std::string_view path) {
    while (!path.empty()) {
        const auto slash = path.rfind('/');
        const auto start = slash == std::string_view::npos ? 0 : slash + 1;
        pending_.emplace_back(path.substr(start));
        path = path.substr(0, start == 0 ? 0 : slash);
    }
}

} // namespace platform::posix
