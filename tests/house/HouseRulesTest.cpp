#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <ranges>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::string kSource = HALVEX_SOURCE_FOLDER;

/// Runs a shell command and returns the words it prints.
std::vector<std::string> wordsPrintedBy(const std::string& command) {
    const test::TemporaryFolder folder;
    const std::string list = folder.file("list");
    EXPECT_EQ(std::system((command + " >" + list).c_str()), 0) << command;
    std::ifstream words(list);
    return {std::istream_iterator<std::string>(words), {}};
}

/// The libraries that a shared object needs directly, without the sanitizers'.
std::vector<std::string> needed(const std::string& object) {
    return wordsPrintedBy("LC_ALL=C readelf --dynamic --wide '" + object +
                          "' | sed -n 's/.*(NEEDED).*\\[\\(.*\\)\\].*/\\1/p' | grep -v san.so");
}

TEST(HouseRules, TheLibraryNeedsOnlyTheStandardLibraryAndItemsNeedOnlyTheLibrary) {
    const auto language =
        testing::AnyOf(testing::StartsWith("libstdc++.so"), testing::StartsWith("libgcc_s.so"),
                       testing::StartsWith("libm.so"), testing::StartsWith("libc.so"),
                       testing::StartsWith("ld-linux"));
    EXPECT_THAT(
        needed(HALVEX_TOOLS),
        testing::AllOf(testing::Contains(testing::StartsWith("libc.so")), testing::Each(language)));
    for (const char* item : {HALVEX_TIME_MENU, HALVEX_MENU_CRACKER, HALVEX_CLOCK})
        EXPECT_THAT(needed(item),
                    testing::AllOf(testing::Contains("libHalvexTools.so.1"),
                                   testing::Each(testing::AnyOf("libHalvexTools.so.1", language))));
}

struct Include {
    std::string file;   ///< relative to the source folder
    std::string header; ///< as written, with its brackets when it has them
};

/// Calls @p use for the path of each product source, relative to the source folder, and its lines.
void forEachSource(const std::function<void(const std::string&, std::ifstream&)>& use) {
    for (const char* folder : {"apps", "extras", "identifiers", "menubar", "menuextras", "paths",
                               "platform", "prefs", "ui"}) {
        for (const auto& entry : fs::recursive_directory_iterator(fs::path(kSource) / folder)) {
            if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp")
                continue;
            std::ifstream lines(entry.path());
            use(entry.path().lexically_relative(kSource).string(), lines);
        }
    }
}

const std::vector<Include>& includes() {
    static const std::vector<Include> all = [] {
        std::vector<Include> found;
        forEachSource([&](const std::string& file, std::ifstream& lines) {
            for (std::string line; std::getline(lines, line);) {
                if (line.starts_with("#include \""))
                    found.push_back({file, line.substr(10, line.rfind('"') - 10)});
                else if (line.starts_with("#include <"))
                    found.push_back({file, line.substr(9)});
            }
        });
        return found;
    }();
    return all;
}

bool matches(const std::string& text, const std::string& pattern) {
    return std::regex_search(text, std::regex("^(" + pattern + ")"));
}

/// "file includes header" for each include of files @p from with a header @p to, both patterns for
/// the beginning of a path.
std::vector<std::string> violations(const std::string& from, const std::string& to) {
    std::vector<std::string> result;
    for (const Include& include : includes())
        if (matches(include.file, from) && matches(include.header, to))
            result.push_back(include.file + " includes " + include.header);
    return result;
}

TEST(HouseRules, EachFolderIncludesOnlyWhatLiesBelowIt) {
    const std::string toolkits = "<Q|<xcb|<X11|<expat|<CLI|<nlohmann";
    const std::string backends = "platform/(posix|expat|qt)/";
    const std::string logic = "(identifiers|menubar|menuextras|paths|prefs|ui)/";
    struct Rule {
        std::string from;
        std::string mustNotInclude;
    };
    for (const Rule& rule : std::vector<Rule>{
             {logic + "|extras/", toolkits + '|' + backends + "|apps/"},
             {logic, "extras/"},
             {"platform/", logic + "|extras/|apps/"},
             {"platform/[^/]*$", toolkits + '|' + backends + "|platform/(widgets|runtime)/"},
             {"platform/base/", "platform/(?!base/)|" + toolkits},
             {"platform/values/", "platform/(?!base/|values/)|" + toolkits},
             {"platform/(widgets|runtime)/", toolkits + '|' + backends},
             {"platform/posix/", "<Q|<xcb|<expat|platform/(expat|qt)/"},
             {"platform/expat/", "<Q|platform/(posix|qt)/"},
             {"paths/", "menuextras/|menubar/|prefs/|ui/"},
             {"apps/(ctl|shared)/", "<Q(Application|Widget|GuiApplication)"},
             {"apps/shared/", "<Q|platform/qt/"},
             {"apps/.*/(?!main.cpp|Services.cpp)[^/]*$", "platform/posix/"}})
        EXPECT_THAT(violations(rule.from, rule.mustNotInclude), testing::IsEmpty())
            << rule.from << " must not include " << rule.mustNotInclude;
}

TEST(HouseRules, NoProgramIncludesTheFolderOfAnother) {
    for (const Include& include : includes()) {
        if (!matches(include.file, "apps/") || !matches(include.header, "apps/"))
            continue;
        const std::string own = fs::path(include.file).parent_path();
        const std::string other = fs::path(include.header).parent_path();
        EXPECT_TRUE(own == other || (other == "apps/support" && own != "apps/shared") ||
                    other == "apps/shared")
            << include.file << " includes " << include.header;
    }
}

TEST(HouseRules, SharedHeadersNameNoSystem) {
    const std::regex condition("^#if(n?def)?[ (]*(defined[ (]*)?"
                               "(__linux__|__unix__|__APPLE__|_WIN32|QT_)");
    forEachSource([&](const std::string& file, std::ifstream& lines) {
        if (matches(file, "apps/|platform/(posix|expat|qt)/"))
            return;
        for (std::string line; std::getline(lines, line);)
            EXPECT_FALSE(std::regex_search(line, condition)) << file << ": " << line;
    });
}

using Graph = std::map<std::string, std::set<std::string>>;

/// The folders that remain when those that include no remaining folder are removed until none is.
std::set<std::string> foldersInCycles(Graph graph) {
    const auto includesRemaining = [&](const std::set<std::string>& below) {
        return std::ranges::any_of(below, [&](const auto& room) { return graph.contains(room); });
    };
    while (std::erase_if(graph, [&](const auto& room) { return !includesRemaining(room.second); }))
        ;
    const auto rooms = std::views::keys(graph);
    return {rooms.begin(), rooms.end()};
}

TEST(HouseRules, FoldersDoNotIncludeEachOtherInCycles) {
    const auto roomOf = [](const std::string& file) {
        return fs::path(file).parent_path().string();
    };
    Graph graph;
    for (const Include& include : includes())
        if (include.header[0] != '<' && roomOf(include.file) != roomOf(include.header))
            graph[roomOf(include.file)].insert(roomOf(include.header));
    EXPECT_TRUE(graph["apps/menubar"].contains("platform/qt"));
    EXPECT_THAT(foldersInCycles(graph), testing::IsEmpty());
}

TEST(HouseRules, NoSourceIsCompiledIntoTwoTargets) {
    std::ifstream commands(HALVEX_COMPILE_COMMANDS);
    ASSERT_TRUE(commands);
    std::map<std::string, int> targets;
    for (std::string line; std::getline(commands, line);)
        if (const auto name = line.find("\"file\": \""); name != std::string::npos)
            ++targets[line.substr(name + 9, line.rfind('"') - name - 9)];
    EXPECT_GT(targets.size(), 100U);
    for (const auto& [file, count] : targets)
        EXPECT_EQ(count, 1) << file;
}

} // namespace
