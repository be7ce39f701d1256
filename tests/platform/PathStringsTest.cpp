#include "platform/PathStrings.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(PathStrings, AreTakenApart) {
    struct Case {
        const char* path;
        const char* last;
        const char* parent;
        const char* extension;
    };
    const Case cases[] = {
        {"/tmp/clock.menu", "clock.menu", "/tmp", "menu"},
        {"/tmp/clock", "clock", "/tmp", ""},
        {"/tmp/a.b/clock", "clock", "/tmp/a.b", ""},
        {"/tmp/clock.menu///", "clock.menu", "/tmp", "menu"},
        {"/tmp//clock..menu", "clock..menu", "/tmp", "menu"},
        {"/tmp", "tmp", "/", ""},
        {"/", "/", "/", ""},
        {"///", "/", "/", ""},
        {"", "", "", ""},
        {"clock.menu", "clock.menu", "", "menu"},
        {".hidden", ".hidden", "", ""},
        {".hidden.menu", ".hidden.menu", "", "menu"},
        {"name.", "name.", "", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(lastPathComponent(c.path), c.last) << c.path;
        EXPECT_EQ(deletingLastPathComponent(c.path), c.parent) << c.path;
        EXPECT_EQ(pathExtension(c.path), c.extension) << c.path;
    }
}

TEST(PathStrings, AreJoined) {
    struct Case {
        const char* path;
        const char* component;
        const char* joined;
    };
    const Case cases[] = {
        {"/tmp", "a", "/tmp/a"},
        {"/tmp/", "a", "/tmp/a"},
        {"/tmp", "/a/", "/tmp/a"},
        {"/", "a", "/a"},
        {"", "a", "a"},
        {"", "/a", "/a"},
        {"/tmp", "", "/tmp"},
        {"/tmp//x", "", "/tmp/x"},
        {"", "", ""},
        {"/", "", "/"},
        {"/tmp", "a//b", "/tmp/a/b"},
        {"tmp", "..", "tmp/.."},
    };
    for (const Case& c : cases)
        EXPECT_EQ(appendingPathComponent(c.path, c.component), c.joined)
            << c.path << " + " << c.component;
}

TEST(PathStrings, TakeAnExtension) {
    const struct {
        const char* path;
        const char* extended;
    } cases[] = {{"Titles", "Titles.plist"},
                 {"/a/Titles/", "/a/Titles.plist"},
                 {"a.b", "a.b.plist"},
                 {"~", "~.plist"},
                 {"/", "/"},
                 {"", ""}};
    for (const auto& [path, extended] : cases)
        EXPECT_EQ(appendingPathExtension(path, "plist"), extended) << path;
}

TEST(PathStrings, ATildeIsAHomeFolderOnlyAtTheStart) {
    const test::ScopedEnvironment home("HOME", "/home/somebody/");
    const struct {
        const char* path;
        const char* expanded;
    } cases[] = {
        {"~", "/home/somebody"},
        {"~/", "/home/somebody"},
        {"~/Library//x/", "/home/somebody/Library/x"},
        {"~root", "/root"},
        {"~root/x/", "/root/x"},
        {"~no such account/x", "~no such account/x"},
        {"/tmp/~", "/tmp/~"},
        {"a~/b", "a~/b"},
        {"", ""},
    };
    for (const auto& [path, expanded] : cases)
        EXPECT_EQ(expandingTildeInPath(path), expanded) << path;
}

TEST(PathStrings, FileURLsNameAbsolutePathsOfThisMachine) {
    for (const auto& [path, url] :
         {std::pair("/", "file:///"),
          {"/a b/50%/\xc3\xa4#?.menu", "file:///a%20b/50%25/%C3%A4%23%3F.menu"},
          {"/-_.~/aZ09", "file:///-_.~/aZ09"}}) {
        EXPECT_EQ(fileURLWithPath(path), url);
        EXPECT_EQ(pathOfFileURL(url), path);
    }
    EXPECT_EQ(fileURLWithPath("a//b"), std::nullopt);
    EXPECT_EQ(fileURLWithPath(""), std::nullopt);
    EXPECT_EQ(fileURLWithPath("/a//b/"), "file:///a/b");
    const struct {
        const char* url;
        bool isFile;
        std::optional<std::string> path;
    } cases[] = {{"FILE://localhost/a/", true, "/a"},
                 {"file:/a%2fb?q#f", true, "/a/b"},
                 {"file://host/a", true, std::nullopt},
                 {"file:a", true, std::nullopt},
                 {"file://", true, std::nullopt},
                 {"file:///%", true, std::nullopt},
                 {"file:///%4", true, std::nullopt},
                 {"file:///%4g", true, std::nullopt},
                 {"file:///%00", true, std::nullopt},
                 {"http:///a", false, std::nullopt},
                 {"/a", false, std::nullopt},
                 {"fil", false, std::nullopt},
                 {"", false, std::nullopt}};
    for (const auto& [url, isFile, path] : cases) {
        EXPECT_EQ(isFileURL(url), isFile) << url;
        EXPECT_EQ(pathOfFileURL(url), path) << url;
    }
}

} // namespace
