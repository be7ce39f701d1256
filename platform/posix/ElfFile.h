#pragma once

#include <optional>
#include <string>

namespace platform::posix {

/// What the header of an executable file says.
struct ElfFile {
    int architecture =
        0; ///< as the platform numbers processors; 0 for one that it has no number for
    bool isSharedObject = false;
    bool isComplete =
        false; ///< the file is as long as its segments say; told for 64-bit files only

    /// Nothing when the file is not there, is no regular file, or is no ELF file.
    static std::optional<ElfFile> read(const std::string& path);
};

} // namespace platform::posix
