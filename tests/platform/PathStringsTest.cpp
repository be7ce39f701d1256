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

} // namespace
