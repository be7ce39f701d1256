#pragma once

#include <filesystem>
#include <system_error>

namespace apps {

/// Where this program lies, and the others beside it: an installation and a build tree are alike.
inline std::filesystem::path programFolder() {
    std::error_code none;
    return std::filesystem::read_symlink("/proc/self/exe", none).parent_path();
}

} // namespace apps
