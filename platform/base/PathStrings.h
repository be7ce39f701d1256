#pragma once

#include <optional>
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

/// @p path as it stands in a URL: every byte but letters, digits and "-_.~/" as a percent sign and
/// two digits.
std::string percentEncodedPath(std::string_view path);

/// The file URL of an absolute path, percent-encoded; nothing for any other path.
std::optional<std::string> fileURLWithPath(std::string_view path);

/// Whether @p url is a URL with the scheme "file", in whatever case.
bool isFileURL(std::string_view url);

/// The path that a file URL of this machine names; nothing for any other URL, and for one whose
/// percent-encoding is none or hides a null byte.
std::optional<std::string> pathOfFileURL(std::string_view url);

} // namespace platform
