#pragma once

#include "menuextras/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/base/PathStrings.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace test {

/// The real files, but for what is refused although permissions would not refuse it to root.
class StubbornFiles final : public platform::posix::PosixFileManager {
  public:
    using PosixFileManager::PosixFileManager;
    std::set<std::string> refused; ///< read, write, remove or copy, a blank, a path

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

  private:
    platform::ScopedService<platform::FileManager> service_{*this};
};

constexpr const char* kPane = "/Library/PreferencePanes/Halvex Pro.prefPane";

/// A pane for all users with shipped menu extras, a folder of installed ones, a bar and a clock.
/// P is the folder of the shipped ones and F that of the installed ones, also in log and requests.
class MenuExtraTree : public testing::Test {
  protected:
    void TearDown() override { myDebug = 0; }

    /// The version "(null)" is none.
    static std::string infoPlist(const std::string& version, const std::string& executable = {}) {
        const std::string key = version == "(null)" ? "Other" : "CFBundleVersion";
        return "<plist><dict><key>" + key + "</key><string>" + version +
               "</string><key>CFBundleExecutable</key><string>" + executable +
               "</string></dict></plist>";
    }
    void ship(const std::string& file, const std::string& version) const {
        tree.write(P + '/' + file + "/Contents/Info.plist", infoPlist(version));
    }
    void install(const std::string& file, const std::string& version) const {
        tree.write(tree.shown(F) + '/' + file + "/Contents/Info.plist", infoPlist(version));
    }
    /// Of the installed copy: its Info.plist's version, empty when there is no copy.
    std::string version(const std::string& file) const {
        if (!std::filesystem::exists(F + '/' + file))
            return "";
        const std::string text = contents(F + '/' + file + "/Contents/Info.plist");
        const auto start = text.find("<string>") + 8;
        return text.substr(start, text.find("</string>") - start);
    }
    /// One text, a line each, with F and P for the folders.
    std::string shown(const std::vector<std::string>& lines) const {
        std::string text;
        for (const std::string& line : lines)
            text += (text.empty() ? "" : "\n") + line;
        using platform::percentEncodedPath;
        for (const auto& [whole, letter] : {std::pair(F, "F"),
                                            {percentEncodedPath(F), "F"},
                                            {P, "P"},
                                            {percentEncodedPath(P), "P"}})
            for (auto at = text.find(whole); at != text.npos; at = text.find(whole))
                text.replace(at, whole.size(), letter);
        return text;
    }
    std::string log() { return shown(tree.log.take()); }
    std::string requests() { return shown(std::exchange(bar.requests, {})); }

    SupportTree tree{{kUserMaker + std::string("/Menu Extras"), kPane}};
    StubbornFiles files{tree.place("/")};
    RecordingMenuBar bar;
    ManualClock clock;
    RecordingWorkspace workspace;
    const std::string F = tree.path(kUserMaker) + "/Menu Extras";
    const std::string P = kPane + std::string("/Contents/PlugIns");
};

} // namespace test
