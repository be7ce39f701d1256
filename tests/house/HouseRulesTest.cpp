#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

/// The libraries that a shared object asks for by itself, sanitizers left out.
std::vector<std::string> needed(const std::string& object) {
    const std::string command = "LC_ALL=C readelf --dynamic --wide '" + object + "'";
    const auto close = [](FILE* pipe) { pclose(pipe); };
    const std::unique_ptr<FILE, decltype(close)> pipe(popen(command.c_str(), "r"), close);
    std::vector<std::string> names;
    std::array<char, 512> line{};
    std::cmatch match;
    while (std::fgets(line.data(), line.size(), pipe.get())) {
        static const std::regex entry(R"(\(NEEDED\).*\[(.+)\])");
        static const std::regex sanitizer(R"(lib(a|ub|t|l)san\.so.*)");
        if (std::regex_search(line.data(), match, entry) &&
            !std::regex_match(match.str(1), sanitizer))
            names.push_back(match.str(1));
    }
    return names;
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

/// What the files of a folder must not hold, in any line.
struct Rule {
    std::string folder;
    bool recursive;
    std::string files;     ///< a regular expression for names
    std::string forbidden; ///< one for lines
};

std::vector<std::string> breaches(const Rule& rule) {
    const std::regex files(rule.files);
    const std::regex forbidden(rule.forbidden);
    std::vector<std::string> found;
    int looked = 0;
    const fs::path root = fs::path(HALVEX_SOURCE_FOLDER) / rule.folder;
    for (auto at = fs::recursive_directory_iterator(root); at != fs::recursive_directory_iterator();
         ++at) {
        if (at->is_directory() && !rule.recursive)
            at.disable_recursion_pending();
        if (!at->is_regular_file() || !std::regex_match(at->path().filename().string(), files))
            continue;
        ++looked;
        std::ifstream stream(at->path());
        for (std::string line; std::getline(stream, line);)
            if (std::regex_search(line, forbidden))
                found.push_back(fs::relative(at->path(), root).string() + ": " + line);
    }
    EXPECT_GT(looked, 0) << rule.folder;
    return found;
}

TEST(HouseRules, ArrowsPointOneWay) {
    const std::string source = R"(.*\.(h|cpp))";
    const std::string toolkit = R"(#include <(Q|xcb|expat|CLI))";
    const std::string backends = R"(#include "(platform/(posix|expat|qt)/|apps/|tests/))";
    const std::string subsystems = R"(#include "(menubar|menuextras|paths|extras|apps|tests)/)";
    const std::string systems = R"(#\s*(el)?if.*(__linux__|__APPLE__|_WIN32|__unix__|QT_))";
    const std::vector<Rule> rules{
        {"menubar", true, source, toolkit + "|" + backends + "|" + systems},
        {"menuextras", true, source, toolkit + "|" + backends + "|" + systems},
        {"paths", true, source, toolkit + "|" + backends + "|" + systems},
        {"extras", true, source, toolkit + "|" + backends + "|" + systems},
        {"platform", false, R"(.*\.h)", toolkit + "|" + backends + "|" + systems},
        {"platform", true, source, subsystems},
        {"platform/posix", true, source, toolkit + R"(|#include "platform/(expat|qt)/)"},
        {"platform/expat", true, source, R"(#include <Q|#include "platform/(posix|qt)/)"},
        {"apps/ctl", true, source, R"(#include <Q|#include "platform/qt/(?!BarClient))"},
    };
    for (const Rule& rule : rules)
        EXPECT_THAT(breaches(rule), testing::IsEmpty()) << rule.folder;
}

} // namespace
