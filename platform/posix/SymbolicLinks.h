#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reading and following symbolic links. A path with more than 40 links is treated as a cycle.
namespace platform::posix {

/// Returns the target of the symbolic link @p name in @p folder, or std::nullopt if it cannot be
/// read, for example because the entry is missing or is not a link.
std::optional<std::string> linkTarget(int folder, const std::string& name);
std::optional<std::string> linkTarget(const std::string& path);

/// Follows the symbolic link at @p path, and any link it leads to. Returns the path of the final
/// target, which need not exist, or @p path itself if it is not a link. Returns std::nullopt for a
/// cycle. Links in the folders above are not resolved.
std::optional<std::string> finalTarget(std::string path);

/// Returns @p path with all links resolved, or std::nullopt if it does not exist.
std::optional<std::string> realPath(const std::string& path);

/// Iterates over the components of an absolute path. The caller either enters each component or, if
/// it is a symbolic link, follows it:
///
///     PathWalk walk(path);
///     while (const auto component = walk.next()) {
///         const auto target = linkTarget(*component);
///         if (!target)
///             walk.enter(*component);
///         else if (!walk.follow(*target))
///             return; // a cycle
///     }
class PathWalk {
  public:
    explicit PathWalk(std::string_view path) { push(path); }

    /// Returns the path of the next component, or std::nullopt at the end. Resolves "." and ".."
    /// without returning them.
    std::optional<std::string> next();
    void enter(std::string component) { folder_ = std::move(component); }
    /// Replaces the last component with the link target @p target. Returns false for a cycle.
    bool follow(std::string_view target);
    /// Returns the path of the folder entered last. It contains no links.
    const std::string& folder() const { return folder_; }

  private:
    void push(std::string_view path);

    std::string folder_ = "/";
    std::vector<std::string> pending_; ///< components, the next one last
    int links_ = 0;
};

} // namespace platform::posix
