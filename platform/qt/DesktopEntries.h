#pragma once

#include "platform/qt/DesktopEntryFile.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform::qt {

/// The desktop entries in the folders "applications" of XDG_DATA_HOME and XDG_DATA_DIRS. An entry
/// in a subfolder has dashes in its identifier: "kde-editor.desktop" for "kde/editor.desktop".
/// Main thread.
class DesktopEntries {
  public:
    /// Reads an entry. Returns std::nullopt if it does not exist, is deleted, invalid or
    /// larger than 1 MiB.
    std::optional<DesktopEntryFile> read(const std::string& identifier) const;

    /// Returns the identifier of the entry that belongs to a window, or an empty string. The first
    /// match counts: the file name of an entry is @p applicationId, StartupWMClass is @p instance
    /// or @p windowClass, the file name is one of these. Case is ignored if nothing matches
    /// exactly. The folders are read at the first call, and again after they have changed.
    std::string identifierForWindow(const std::string& applicationId, const std::string& instance,
                                    const std::string& windowClass);

  private:
    using Identifiers = std::map<std::string, std::string>;
    struct Index {
        Identifiers byIdentifier;                                  ///< without ".desktop"
        Identifiers byWindowClass;                                 ///< StartupWMClass
        std::vector<std::pair<std::string, std::int64_t>> folders; ///< and their times of change
    };

    static bool isCurrent(const Index& index);
    static Index makeIndex();

    std::optional<Index> index_; ///< std::nullopt until it is needed
};

/// Returns the path of a program that is searched for in PATH unless it is a path, or an empty
/// string if it is not executable.
std::string findProgram(const std::string& program);

} // namespace platform::qt
