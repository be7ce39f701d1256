#pragma once

#include <optional>
#include <string>

/// The Trash as defined by freedesktop.org: a folder that contains "files" with the trashed items
/// and "info" with the original path and the deletion date of each.
namespace platform::posix {

/// Moves a file, a folder or a symbolic link to the Trash on its file system: the home Trash in
/// XDG_DATA_HOME or ~/.local/share if that is on the same file system, otherwise the folder that
/// trashAtTop returns. Creates missing folders with mode 0700. If the item's name is taken in
/// the Trash, a number is added to it: "Clock.2.menu". Returns false on failure and leaves the
/// item in place.
bool moveToTrash(const std::string& path);

/// Returns the current user's Trash in @p top, the top folder of a file system, and creates it
/// if necessary: ".Trash/<uid>" if ".Trash" is a folder with the sticky bit, or otherwise
/// ".Trash-<uid>". Returns std::nullopt if the Trash cannot be created, is a link, or belongs
/// to another user.
std::optional<std::string> trashAtTop(const std::string& top);

} // namespace platform::posix
