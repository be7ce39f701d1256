#pragma once

#include <optional>
#include <string>
#include <vector>

namespace platform::posix {

/// Properties of an executable file, read from its ELF headers.
struct ElfFile {
    /// The number that DynamicLoader uses for the processor, or 0 for an unknown processor.
    int architecture = 0;
    bool isSharedObject = false;
    /// Whether the file contains all of its segments and its section table. Always false for 32-bit
    /// files and for files in the other byte order.
    bool isComplete = false;
    /// Where the loader searches for the libraries that the file needs, except in the system's
    /// folders: run paths such as "$ORIGIN:/opt/lib", and libraries that are needed by path. Empty
    /// if the file is not complete.
    std::vector<std::string> libraryPaths;

    /// Returns std::nullopt if the file is missing, not a regular file, or not an ELF file.
    static std::optional<ElfFile> read(const std::string& path);
    static std::optional<ElfFile> read(int descriptor);
};

} // namespace platform::posix
