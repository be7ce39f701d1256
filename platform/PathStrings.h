#pragma once

#include <string>
#include <string_view>

/// Operations on paths as strings. None looks for files; repeated slashes count as one and
/// trailing ones are dropped.
namespace platform {

/// @p path with @p component below it. An empty path gives the component, an empty component the
/// path.
std::string appendingPathComponent(std::string_view path, std::string_view component);

/// The last component; "/" for "/", empty for an empty path.
std::string lastPathComponent(std::string_view path);

/// The path without its last component; "/" for "/" and for what lies in it, empty for a single
/// component.
std::string deletingLastPathComponent(std::string_view path);

/// What follows the last dot of the last component; empty when there is none, or when the name
/// begins with its only dot.
std::string pathExtension(std::string_view path);

/// @p path with a dot and @p extension behind its last component. A path without a name ("/" and
/// the empty one) stays as it is.
std::string appendingPathExtension(std::string_view path, std::string_view extension);

/// A leading "~" replaced by the user's home folder, a leading "~name" by the home folder of that
/// account. Any other path, also that of an account that does not exist, comes back as it is.
std::string expandingTildeInPath(std::string_view path);

} // namespace platform
