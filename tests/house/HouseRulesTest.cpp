#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Runs a shell command and returns the words it prints.
std::vector<std::string> wordsPrintedBy(const std::string& command) {
    const test::TemporaryFolder folder;
    const std::string list = folder.file("list");
    EXPECT_EQ(std::system(("(" + command + ") >" + list).c_str()), 0) << command;
    std::ifstream words(list);
    return {std::istream_iterator<std::string>(words), {}};
}

/// The libraries that a shared object needs directly, without the sanitizers'.
std::vector<std::string> needed(const std::string& object) {
    return wordsPrintedBy("LC_ALL=C readelf --dynamic --wide '" + object +
                          "' | sed -n 's/.*(NEEDED).*\\[\\(.*\\)\\].*/\\1/p' | grep -v san.so");
}

TEST(HouseRules, TheLibraryNeedsOnlyTheStandardLibraryAndItemsNeedOnlyTheLibrary) {
    const auto language = testing::ContainsRegex("^(lib(stdc[+][+]|gcc_s|m|c)[.]so|ld-linux)");
    EXPECT_THAT(needed(HALVEX_TOOLS),
                testing::AllOf(testing::Contains("libc.so.6"), testing::Each(language)));
    for (const char* item : {HALVEX_ITEMS})
        EXPECT_THAT(needed(item),
                    testing::AllOf(testing::Contains("libHalvexTools.so.1"),
                                   testing::Each(testing::AnyOf("libHalvexTools.so.1", language))));
}

/// Returns a command that prints "file:match" for each match in the product's sources.
std::string grep(const std::string& pattern) {
    return "cd '" HALVEX_SOURCE_FOLDER "' && grep -rEo --include=*.h --include=*.cpp '" + pattern +
           "' apps examples extras identifiers menubar menuextras paths platform prefs testing ui "
           "warnings";
}

/// Prints "file header" for each include, with the opening bracket of a system header.
const std::string kPrintIncludes =
    grep("^#include [<\"][^\">]+") + " | sed -E 's/:#include \"?/ /'";

/// "file includes header" for each include of files @p from with a header @p to, both patterns for
/// the beginning of a path. @p to can refer to the groups of @p from.
std::vector<std::string> violations(const std::string& from, const std::string& to) {
    static const std::vector<std::string> words = wordsPrintedBy(kPrintIncludes);
    const std::regex pattern("(?=" + from + ")[^ ]* includes (?:" + to + ").*");
    std::vector<std::string> result;
    for (std::size_t i = 0; i < words.size(); i += 2)
        if (const auto line = words[i] + " includes " + words[i + 1];
            std::regex_match(line, pattern))
            result.push_back(line);
    return result;
}

TEST(HouseRules, EachFolderIncludesOnlyWhatLiesBelowIt) {
    const std::string toolkits = "<Q|<xcb|<X11|<expat|<CLI|<nlohmann";
    const std::string backends = "platform/(posix|expat|qt)/";
    const std::string logic = "(?:identifiers|menubar|menuextras|paths|prefs|ui|warnings)/";
    for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
             {logic + "|extras/", toolkits + '|' + backends + "|apps/"},
             {logic, "extras/"},
             {"examples/|testing/", toolkits + '|' + backends + "|apps/|extras/|tests/"},
             {"testing/", logic + "|<g(test|mock)"},
             {"platform/|" + logic, "testing/"},
             {"platform/", logic + "|extras/|apps/"},
             {"platform/[^/]* ", toolkits + '|' + backends + "|platform/(widgets|runtime)/"},
             {"platform/base/", "platform/(?!base/)|" + toolkits},
             {"platform/values/", "platform/(?!base/|values/)|" + toolkits},
             {"platform/(widgets|runtime)/", toolkits + '|' + backends},
             {"platform/posix/", "<Q|<xcb|<expat|platform/(expat|qt)/"},
             {"platform/expat/", "<Q|platform/(posix|qt)/"},
             {"paths/", "menuextras/|menubar/|prefs/|ui/"},
             {"apps/(ctl|shared)/", "<Q(Application|Widget|GuiApplication)"},
             {"apps/shared/", "<Q|platform/qt/"},
             {"apps/[^ ]*/(?!main.cpp|Services.cpp)[^/]* ", "platform/posix/"},
             {"apps/([^/]*)/", "apps/(?!\\1/|shared/|support/)"},
             {"apps/shared/", "apps/support/"}})
        EXPECT_THAT(violations(from, to), testing::IsEmpty()) << from << " includes " << to;
    EXPECT_THAT(violations("apps/menubar/", "platform/qt/"), testing::Not(testing::IsEmpty()));
}

TEST(HouseRules, SharedSourcesHaveNoConditionsOnTheSystem) {
    EXPECT_THAT(wordsPrintedBy(grep("^#if(n?def)?[ (]*(defined[ (]*)?"
                                    "(__linux__|__unix__|__APPLE__|_WIN32|QT_)") +
                               " | grep -vE '^(apps|platform/(posix|expat|qt))/' || true"),
                testing::IsEmpty());
}

TEST(HouseRules, FoldersDoNotIncludeEachOtherInCycles) {
    // tsort fails and prints the folders of each cycle.
    EXPECT_THAT(wordsPrintedBy(kPrintIncludes +
                               " | grep -v '<' | sed -E 's|/[^/ ]+ | |; s|/[^/ ]+$||' | tsort"),
                testing::Contains("apps/menubar"));
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
