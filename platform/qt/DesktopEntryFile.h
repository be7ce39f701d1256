#pragma once

#include "platform/Applications.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::qt {

/// The contents of a ".desktop" file that describes an application.
struct DesktopEntryFile {
    DesktopEntry entry;
    std::string windowClass{};   ///< StartupWMClass
    std::string command{};       ///< Exec
    std::string tryProgram{};    ///< TryExec
    std::string workingFolder{}; ///< Path
    std::vector<std::string> onlyShownIn{};
    std::vector<std::string> notShownIn{};
    bool isDeleted = false;
    bool isActivatable = false; ///< DBusActivatable
    bool needsTerminal = false;
    bool notifiesStartup = false;
};

/// Returns the locales that a key may be translated to, best match first: "de_AT", "de" for
/// "de_AT.UTF-8". Empty for "C" and "POSIX".
std::vector<std::string> localesOf(std::string_view locale);

/// Parses a ".desktop" file. The identifier and the path of the result are empty. Keys that are
/// missing or malformed keep their defaults; malformed UTF-8 is replaced with U+FFFD. Returns
/// std::nullopt if it does not describe an application or has no name.
std::optional<DesktopEntryFile> parseDesktopEntry(std::string_view text,
                                                  const std::vector<std::string>& locales);

using Command = std::vector<std::string>; ///< a program and its arguments

/// Returns the commands that open @p urls (absolute paths or URLs): one for each of them if the
/// program takes only one, and always at least one. Empty if the command is missing or malformed.
std::vector<Command> commandsOf(const DesktopEntryFile& file, const std::vector<std::string>& urls);

/// Replaces each byte that is not part of well-formed UTF-8 with U+FFFD.
std::string withValidUtf8(std::string_view text);

} // namespace platform::qt
