#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reading and following symbolic links. A path that leads through more than 40 links is treated as
/// a cycle.
namespace platform::posix {

/// Returns what the symbolic link @p name in @p folder holds, or std::nullopt if it is not a link.
std::optional<std::string> linkTarget(int folder, const std::string& name);
std::optional<std::string> linkTarget(const std::string& path);

/// Follows the symbolic link at @p path until it leads to something that is not a link, which need
/// not exist, and returns the path of that. Links in the folders above are left to the system.
/// Returns std::nullopt for a cycle.
std::optional<std::string> finalTarget(std::string path);

/// Steps through an absolute path one component at a time. The caller looks at each component and
/// either enters it or follows the link that it found there:
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

    /// Returns the path of the next component, or std::nullopt at the end. Skips "." and resolves
    /// "..".
    std::optional<std::string> next();
    void enter(std::string component) { folder_ = std::move(component); }
    /// Continues with @p target in place of the last component. Returns false for a cycle.
    bool follow(std::string_view target);
    /// The part of the path that has been entered, without links.
    const std::string& folder() const { return folder_; }

  private:
    void push(std::string_view path);

    std::string folder_ = "/";
    std::vector<std::string> pending_; ///< components, the next one last
    int links_ = 0;
};

} // namespace platform::posix
