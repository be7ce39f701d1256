#pragma once

#include "platform/base/NonCopyable.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace test {

inline std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream result;
    result << stream.rdbuf(); // does not throw if a process exits while its file is read
    return result.str();
}

/// A temporary folder, empty at first, that is removed with the object.
class TemporaryFolder : platform::NonCopyable {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "halvex-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot create a temporary folder: " + pattern);
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    std::string file(std::string_view name) const { return (path_ / name).string(); }
    std::string write(std::string_view name, std::string_view contents) const {
        const auto target = path_ / name;
        std::filesystem::create_directories(target.parent_path());
        std::ofstream(target, std::ios::binary) << contents;
        return target.string();
    }

  private:
    std::filesystem::path path_;
};

} // namespace test
