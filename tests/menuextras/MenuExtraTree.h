#pragma once

#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/base/PathStrings.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace test {

constexpr const char* kPane = "/Library/PreferencePanes/Halvex Pro.prefPane";

/// A preference pane for all users with shipped menu extras, a folder of installed ones, and fakes
/// of the bar, the clock and the workspace. In expected log lines and requests, P and F stand for
/// the folders of the shipped and the installed menu extras.
class MenuExtraTree : public testing::Test {
  protected:
    void TearDown() override { myDebug = 0; }

    /// "(null)" stands for a dictionary without a version.
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
    /// Returns the version in the installed Info.plist, or an empty string if there is no copy.
    std::string version(const std::string& file) const {
        if (!std::filesystem::exists(F + '/' + file))
            return "";
        const std::string text = contents(F + '/' + file + "/Contents/Info.plist");
        const auto start = text.find("<string>") + 8;
        return text.substr(start, text.find("</string>") - start);
    }
    /// Joins lines and replaces the folders with F and P.
    std::string shown(const std::vector<std::string>& lines) const {
        std::string text;
        for (const std::string& line : lines)
            text += (text.empty() ? "" : "\n") + line;
        using platform::percentEncodedPath;
        for (const auto& [folder, letter] : {std::pair(F, "F"),
                                             {percentEncodedPath(F), "F"},
                                             {P, "P"},
                                             {percentEncodedPath(P), "P"}})
            for (auto at = text.find(folder); at != text.npos; at = text.find(folder))
                text.replace(at, folder.size(), letter);
        return text;
    }
    std::string log() { return shown(tree.log.take()); }
    std::string requests() { return shown(std::exchange(bar.requests, {})); }

    SupportTree tree{{kUserMaker + std::string("/Menu Extras"), kPane}};
    RecordingMenuBar bar;
    ManualClock clock;
    RecordingWorkspace workspace;
    const std::string F = tree.path(kUserMaker) + "/Menu Extras";
    const std::string P = kPane + std::string("/Contents/PlugIns");
};

} // namespace test
