#pragma once

#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/PosixFileManager.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace test {

/// A home folder and a /Library of the test's own, with the real file manager on them. Paths are
/// given and shown with "~" for the home folder.
class SupportTree {
  public:
    explicit SupportTree(const std::vector<std::string>& folders = {}) {
        platform::expat::install();
        std::filesystem::create_directories(folder_.file("root/Library"));
        std::filesystem::create_directories(folder_.file("home/Library"));
        for (const std::string& folder : folders)
            make(folder);
    }

    RecordingLog log;

    /// The path that the library takes and gives.
    std::string path(std::string_view shown) const {
        return shown.starts_with('~') ? home_ + std::string(shown.substr(1)) : std::string(shown);
    }
    std::string shown(const std::string& path) const {
        return path.starts_with(home_) ? '~' + path.substr(home_.size()) : path;
    }
    /// Where it really lies.
    std::string place(std::string_view shown) const {
        return shown.starts_with('/') ? folder_.file("root") + std::string(shown) : path(shown);
    }
    void make(std::string_view shown) const { std::filesystem::create_directories(place(shown)); }
    void write(std::string_view shown, std::string_view bytes) const {
        folder_.write(place(shown), bytes);
    }
    std::string read(std::string_view shown) const { return contents(place(shown)); }
    bool exists(std::string_view shown) const { return std::filesystem::exists(place(shown)); }
    /// Everything below the two Library folders.
    std::set<std::string> entries() const {
        std::set<std::string> result;
        for (const std::string base : {"~/Library", "/Library"})
            for (const auto& entry : std::filesystem::recursive_directory_iterator(place(base)))
                result.insert(base + entry.path().string().substr(place(base).size()));
        return result;
    }

  private:
    TemporaryFolder folder_;
    std::string home_ = folder_.file("home");
    ScopedEnvironment environment_{"HOME", home_};
    platform::posix::PosixFileManager files_{folder_.file("root")};
    platform::ScopedService<platform::FileManager> service_{files_};
};

constexpr const char* kUser = "~/Library/Application Support";
constexpr const char* kUserMaker = "~/Library/Application Support/Quorvane Software";
constexpr const char* kUserProduct = "~/Library/Application Support/Quorvane Software/Halvex Pro";
constexpr const char* kLocal = "/Library/Application Support";
constexpr const char* kLocalMaker = "/Library/Application Support/Quorvane Software";

} // namespace test
