#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace test {

/// The files below a folder: path relative to it, contents.
inline std::map<std::string, std::string> folderContents(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream stream(entry.path(), std::ios::binary);
        files[std::filesystem::relative(entry.path(), folder).string()] =
            std::string(std::istreambuf_iterator<char>(stream), {});
    }
    return files;
}

} // namespace test
