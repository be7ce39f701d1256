#pragma once

#include <optional>
#include <string>

/// The Trash as freedesktop.org describes it: a folder with "files", which holds what was thrown
/// away, and "info", which says of each where it lay and when it went. No operation throws.
namespace platform::posix {

/// Moves a file, a folder or a symbolic link into the Trash of its file system: the user's own
/// (below XDG_DATA_HOME, else ~/.local/share), or when that lies elsewhere the one at the top of
/// the file system, ".Trash/<user>" or ".Trash-<user>". Missing folders are made, the user's alone.
/// A name that the Trash has already gets a number. False when it cannot be moved; then it is
/// untouched, and nothing of it stays in the Trash.
bool moveToTrash(const std::string& path);

/// The folder for the current user at the top of a file system: ".Trash/<user>" when ".Trash" is a
/// true folder with the sticky bit, else ".Trash-<user>". Nothing when it is neither there nor can
/// be made, is a link, or belongs to somebody else.
std::optional<std::string> trashAtTop(const std::string& top);

} // namespace platform::posix
