#pragma once

#include "identifiers/ExportedIdentifiers.h"
#include "platform/Bundle.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/PosixFileManager.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test {

/// The real file manager, except for the operations that a test refuses. Permissions would not stop
/// root.
class RefusingFiles final : public platform::posix::PosixFileManager {
  public:
    using PosixFileManager::PosixFileManager;
    std::set<std::string> refused; ///< "read", "write", "remove", "copy" or "move", a blank, a path

    bool isWritableFile(const std::string& path) const override {
        return !refused.contains("write " + path) && PosixFileManager::isWritableFile(path);
    }
    bool isReadableFile(const std::string& path) const override {
        return !refused.contains("read " + path) && PosixFileManager::isReadableFile(path);
    }
    bool removeItem(const std::string& path) override {
        return !refused.contains("remove " + path) && PosixFileManager::removeItem(path);
    }
    bool copyItem(const std::string& from, const std::string& to) override {
        return !refused.contains("copy " + from) && PosixFileManager::copyItem(from, to);
    }
    platform::Replacement replaceItem(const std::string& from, const std::string& to) override {
        if (refused.contains("remove " + to))
            return platform::Replacement::NotRemoved;
        return PosixFileManager::replaceItem(refused.contains("copy " + from) ? "" : from, to);
    }
    bool moveFile(const std::string& from, const std::string& to) override {
        return !refused.contains("move " + from) && PosixFileManager::moveFile(from, to);
    }

  private:
    platform::ScopedService<platform::FileManager> service_{*this};
};

/// A temporary home folder and /Library. In the paths of a test, "~" stands for the home folder.
class SupportTree {
  public:
    explicit SupportTree(const std::vector<std::string>& folders = {}) {
        platform::expat::install();
        make("/Library");
        make("~/Library");
        for (const std::string& folder : folders)
            make(folder);
    }

    RecordingLog log;

    /// Returns the path to pass to the library.
    std::string path(std::string_view shown) const {
        return shown.starts_with('~') ? home_ + std::string(shown.substr(1)) : std::string(shown);
    }
    std::string shown(const std::string& path) const {
        return path.starts_with(home_) ? '~' + path.substr(home_.size()) : path;
    }
    /// Returns the path in the real file system.
    std::string systemPath(std::string_view shown) const {
        return shown.starts_with('/') ? root_ + std::string(shown) : path(shown);
    }
    void make(std::string_view shown) const {
        std::filesystem::create_directories(systemPath(shown));
    }
    void write(std::string_view shown, std::string_view bytes) const {
        folder_.write(systemPath(shown), bytes);
    }
    std::string read(std::string_view shown) const { return contents(systemPath(shown)); }
    bool exists(std::string_view shown) const { return std::filesystem::exists(systemPath(shown)); }
    /// Returns the paths of everything below the two Library folders.
    std::set<std::string> entries() const {
        std::set<std::string> result;
        for (const std::string base : {"~/Library", "/Library"}) {
            const std::string root = systemPath(base);
            for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
                result.insert(base + entry.path().string().substr(root.size()));
        }
        return result;
    }

  private:
    TemporaryFolder folder_;
    std::string home_ = folder_.file("home");
    std::string root_ = folder_.file("root");
    ScopedEnvironment environment_{"HOME", home_};

  public:
    RefusingFiles files{root_};
};

/// A preference pane whose code counts as loaded in this process while the object exists.
struct LoadedPane : platform::NonCopyable {
    explicit LoadedPane(std::string path)
        : bundle(std::make_shared<platform::Bundle>(
              std::move(path),
              platform::PropertyList::Dictionary{{"CFBundleIdentifier", HalvexPrefsBundleID}})) {
        platform::Bundle::setCodeState(bundle, platform::Bundle::Code::Loaded);
    }
    ~LoadedPane() { platform::Bundle::setCodeState(bundle, platform::Bundle::Code::Unloaded); }

    const std::shared_ptr<platform::Bundle> bundle;
};

constexpr const char* kUser = "~/Library/Application Support";
constexpr const char* kUserMaker = "~/Library/Application Support/Quorvane Software";
constexpr const char* kUserProduct = "~/Library/Application Support/Quorvane Software/Halvex Pro";
constexpr const char* kLocal = "/Library/Application Support";
constexpr const char* kLocalMaker = "/Library/Application Support/Quorvane Software";

} // namespace test
