#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// The libraries that a shared object asks for by itself, sanitizers left out.
std::vector<std::string> needed(const std::string& object) {
    const test::TemporaryFolder folder;
    const std::string list = folder.file("list");
    const std::string command = "LC_ALL=C readelf --dynamic --wide '" + object +
                                "' | sed -n 's/.*(NEEDED).*\\[\\(.*\\)\\].*/\\1/p'"
                                " | grep -v san.so >" +
                                list;
    EXPECT_EQ(std::system(command.c_str()), 0) << object;
    std::ifstream names(list);
    return {std::istream_iterator<std::string>(names), {}};
}

TEST(HouseRules, TheLibraryAsksForTheStandardLibraryAloneAndItemsForTheLibrary) {
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

using Words = std::vector<std::string>;

/// What the lines of a folder's sources must not begin with.
struct Rule {
    std::string folder;
    Words forbidden;
    Words extensions{".h", ".cpp"};
    bool recursive = true;
};

std::vector<std::string> breaches(const Rule& rule) {
    std::vector<std::string> found;
    int looked = 0;
    const fs::path root = fs::path(HALVEX_SOURCE_FOLDER) / rule.folder;
    for (auto at = fs::recursive_directory_iterator(root); at != fs::end(at); ++at) {
        if (at->is_directory() && !rule.recursive)
            at.disable_recursion_pending();
        if (std::ranges::count(rule.extensions, at->path().extension().string()) == 0)
            continue;
        ++looked;
        std::ifstream stream(at->path());
        for (std::string line; std::getline(stream, line);)
            if (std::ranges::any_of(rule.forbidden,
                                    [&](const auto& word) { return line.starts_with(word); }))
                found.push_back(fs::relative(at->path(), root).string() + ": " + line);
    }
    EXPECT_GT(looked, 0) << rule.folder;
    return found;
}

Words including(std::initializer_list<const char*> targets) {
    Words words;
    for (const char* target : targets)
        words.push_back(std::string("#include ") + target);
    return words;
}

TEST(HouseRules, ArrowsPointOneWay) {
    // Neither a toolkit, nor what implements a service, nor a host; nor a word of a system.
    Words foreign = including({"<Q", "<xcb", "<expat", "<CLI", "\"platform/posix/",
                               "\"platform/expat/", "\"platform/qt/", "\"apps/", "\"tests/"});
    for (const char* system : {"__linux__", "__unix__", "__APPLE__", "_WIN32", "QT_"})
        for (const char* test : {"#ifdef ", "#ifndef ", "#if defined(", "#if "})
            foreign.push_back(std::string(test) + system);
    std::vector<Rule> rules{
        {"platform", foreign, {".h"}, false},
        {"platform", including({"\"menubar/", "\"menuextras/", "\"prefs/", "\"paths/", "\"ui/",
                                "\"extras/", "\"apps/", "\"tests/"})},
        {"platform/posix",
         including({"<Q", "<xcb", "<expat", "\"platform/expat/", "\"platform/qt/"})},
        {"platform/expat", including({"<Q", "\"platform/posix/", "\"platform/qt/"})},
        {"apps/ctl", including({"<QApplication", "<QWidget", "<QGuiApplication"})},
    };
    for (const char* logic : {"menubar", "menuextras", "paths", "prefs", "ui", "extras"})
        rules.push_back({logic, foreign});
    for (const Rule& rule : rules)
        EXPECT_THAT(breaches(rule), testing::IsEmpty()) << rule.folder;
}

} // namespace
