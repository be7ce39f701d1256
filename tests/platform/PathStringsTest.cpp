#include "platform/base/PathStrings.h"
#include "platform/FileManager.h"

#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

using namespace platform;

namespace {

TEST(PathStrings, SplitIntoComponentsAndExtensions) {
    const char* const cases[][4] = {
        {"/tmp/clock.menu", "clock.menu", "/tmp", "menu"},
        {"/tmp/a.b/clock", "clock", "/tmp/a.b", ""},
        {"/tmp/clock.menu///", "clock.menu", "/tmp", "menu"},
        {"/tmp//clock..menu", "clock..menu", "/tmp", "menu"},
        {"/tmp", "tmp", "/", ""},
        {"/", "/", "/", ""},
        {"", "", "", ""},
        {"clock.menu", "clock.menu", "", "menu"},
        {".hidden", ".hidden", "", ""},
        {"name.", "name.", "", ""},
    };
    for (const auto& [path, last, parent, extension] : cases) {
        EXPECT_EQ(lastPathComponent(path), last) << path;
        EXPECT_EQ(deletingLastPathComponent(path), parent) << path;
        EXPECT_EQ(pathExtension(path), extension) << path;
    }
}

TEST(PathStrings, JoinWithASingleSlash) {
    const char* const cases[][3] = {
        {"/tmp", "a", "/tmp/a"},   {"/tmp/", "a", "/tmp/a"},
        {"/tmp", "/a/", "/tmp/a"}, {"/", "a", "/a"},
        {"", "/a", "/a"},          {"/tmp", "", "/tmp"},
        {"/tmp//x", "", "/tmp/x"}, {"/tmp", "a//b", "/tmp/a/b"},
    };
    for (const auto& [path, component, joined] : cases)
        EXPECT_EQ(appendingPathComponent(path, component), joined) << path << " + " << component;
}

TEST(PathStrings, AppendAnExtensionToTheLastComponent) {
    const char* const cases[][2] = {
        {"a.b", "a.b.plist"}, {"/a/Titles/", "/a/Titles.plist"}, {"/", "/"}, {"", ""}};
    for (const auto& [path, extended] : cases)
        EXPECT_EQ(appendingPathExtension(path, "plist"), extended) << path;
}

TEST(PathStrings, ExpandATildeOnlyAtTheStart) {
    const test::ScopedEnvironment home("HOME", "/home/somebody/");
    const char* const cases[][2] = {
        {"~", "/home/somebody"}, {"~/Library//x/", "/home/somebody/Library/x"},
        {"~root/x/", "/root/x"}, {"~no such account/x", "~no such account/x"},
        {"/tmp/~", "/tmp/~"},    {"", ""},
    };
    for (const auto& [path, expanded] : cases)
        EXPECT_EQ(expandingTildeInPath(path), expanded) << path;
}

TEST(PathStrings, ConvertToAndFromFileURLsOfThisMachine) {
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
    EXPECT_EQ(pathOfFileURL("FILE://localhost/a/"), "/a");
    EXPECT_EQ(pathOfFileURL("file:/a%2fb?q#f"), "/a/b");
    for (const char* url : {"file://host/a", "file:a", "file://", "file:///%", "file:///%4",
                            "file:///%4g", "file:///%00", "http:///a", "/a", "fil", ""}) {
        EXPECT_EQ(isFileURL(url), std::string_view(url).starts_with("file:")) << url;
        EXPECT_EQ(pathOfFileURL(url), std::nullopt) << url;
    }
}

} // namespace
