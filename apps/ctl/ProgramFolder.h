#pragma once

#include <filesystem>
#include <system_error>

namespace apps {

/// Returns the folder that contains this program. The other programs are at the same relative paths
/// in an installation and in a build tree.
inline std::filesystem::path programFolder() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

} // namespace apps
