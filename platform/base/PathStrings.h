#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Operations on paths as strings, without access to the file system. Results have no repeated
/// or trailing slashes.
namespace platform {

/// Returns @p path and @p component joined by a slash. If one of them is empty, returns the other.
std::string appendingPathComponent(std::string_view path, std::string_view component);

/// Returns the last component: "/" for "/", and an empty string for an empty path.
std::string lastPathComponent(std::string_view path);

/// Returns the path without its last component: "/" for "/" and for "/a", and an empty string for a
/// single component such as "a".
std::string deletingLastPathComponent(std::string_view path);

/// Returns the text after the last dot of the last component. Empty if there is no dot, or only one
/// at the start of the name.
std::string pathExtension(std::string_view path);

/// Appends a dot and @p extension to the last component. Returns "/" and the empty path unchanged.
std::string appendingPathExtension(std::string_view path, std::string_view extension);

/// Percent-encodes every byte of @p path except ASCII letters, digits and "-_.~/".
std::string percentEncodedPath(std::string_view path);

/// Returns the percent-encoded file URL of an absolute path, or std::nullopt for any other path.
std::optional<std::string> fileURLWithPath(std::string_view path);

/// Returns whether the scheme of @p url is "file", ignoring case.
bool isFileURL(std::string_view url);

/// Returns the absolute path that a file URL of this machine refers to. Returns std::nullopt for
/// any other URL, for malformed percent-encoding and for an encoded null byte.
std::optional<std::string> pathOfFileURL(std::string_view url);

} // namespace platform
