#pragma once

#include <optional>
#include <string>

namespace platform::posix {

/// What the ELF header of an executable file states.
struct ElfFile {
    /// The number that DynamicLoader uses for the processor; 0 if it has none.
    int architecture = 0;
    bool isSharedObject = false;
    /// Whether the file is long enough for all its segments. Always false for 32-bit files.
    bool isComplete = false;

    /// Returns std::nullopt if the file is missing, not a regular file, or not an ELF file.
    static std::optional<ElfFile> read(const std::string& path);
};

} // namespace platform::posix
