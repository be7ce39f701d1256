#include "apps/shared/AbsolutePath.h"

#include <filesystem>
#include <system_error>

namespace apps {

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(path, error);
    if (error)
        return path;
    std::string clean = absolute.lexically_normal().string();
    if (clean.size() > 1 && clean.ends_with('/'))
        clean.pop_back();
    return clean;
}

} // namespace apps
