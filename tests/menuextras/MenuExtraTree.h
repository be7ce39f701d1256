#pragma once

#include "menuextras/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/PathStrings.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace test {

/// The real files, but for some paths that refuse what permissions would not refuse to root.
class StubbornFiles final : public platform::posix::PosixFileManager {
  public:
    using PosixFileManager::PosixFileManager;
    std::set<std::string> readOnly;
    std::set<std::string> unreadable;
    std::set<std::string> undeletable;
    std::set<std::string> uncopyable;

    bool isWritableFile(const std::string& path) const override {
        return !readOnly.contains(path) && PosixFileManager::isWritableFile(path);
    }
    bool isReadableFile(const std::string& path) const override {
        return !unreadable.contains(path) && PosixFileManager::isReadableFile(path);
    }
    bool removeItem(const std::string& path) override {
        return !undeletable.contains(path) && PosixFileManager::removeItem(path);
    }
    bool copyItem(const std::string& from, const std::string& to) override {
        return !uncopyable.contains(from) && PosixFileManager::copyItem(from, to);
    }

  private:
    platform::ScopedService<platform::FileManager> service_{*this};
};

constexpr const char* kPane = "/Library/PreferencePanes/Halvex Pro.prefPane";
constexpr const char* kUsersPane = "~/Library/PreferencePanes/Halvex Pro.prefPane";

using Lines = std::vector<std::string>;

/// A pane for all users with shipped menu extras, a folder of installed ones, a bar and a clock.
/// In lines and requests P is the folder of the shipped ones and F that of the installed ones.
class MenuExtraTree : public testing::Test {
  protected:
    void TearDown() override { myDebug = 0; }

    static std::string infoPlist(const std::string& version, const std::string& executable = {}) {
        return "<plist><dict><key>CFBundleVersion</key><string>" + version +
               "</string><key>CFBundleExecutable</key><string>" + executable +
               "</string></dict></plist>";
    }
    void ship(const std::string& file, const std::string& version) {
        tree.write(std::string(kPane) + "/Contents/PlugIns/" + file + "/Contents/Info.plist",
                   infoPlist(version));
    }
    void install(const std::string& file, const std::string& version) {
        tree.write("~" + F.substr(tree.path("~").size()) + '/' + file + "/Contents/Info.plist",
                   infoPlist(version));
    }
    /// Empty when the file is not there.
    static std::string contents(const std::string& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Whether this version, and no other, is the installed one; an empty version: none is.
    bool isInstalled(const std::string& file, const std::string& version) const {
        const std::string info = contents(F + '/' + file + "/Contents/Info.plist");
        return version.empty() ? info.empty() && !std::filesystem::exists(F + '/' + file)
                               : info == infoPlist(version);
    }
    Lines shown(Lines lines) const {
        const std::string url = platform::percentEncodedPath(F);
        const std::string paneUrl = platform::percentEncodedPath(P);
        for (std::string& line : lines)
            for (const auto& [whole, letter] : {std::pair(F, "F"), std::pair(url, "F"),
                                                std::pair(P, "P"), std::pair(paneUrl, "P")})
                for (auto at = line.find(whole); at != line.npos; at = line.find(whole))
                    line.replace(at, whole.size(), letter);
        return lines;
    }
    Lines lines() { return shown(tree.log.take()); }
    Lines requests() { return shown(std::exchange(bar.requests, {})); }

    SupportTree tree{{kUserMaker + std::string("/Menu Extras"), kPane}};
    StubbornFiles files{tree.place("/")};
    RecordingMenuBar bar;
    ManualClock clock;
    RecordingWorkspace workspace;
    const std::string F = tree.path(kUserMaker) + "/Menu Extras";
    const std::string P = kPane + std::string("/Contents/PlugIns");
};

} // namespace test
