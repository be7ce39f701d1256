#include "platform/qt/DesktopEntries.h"

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

using namespace platform::qt;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

const std::string kStart = "[Desktop Entry]\nType=Application\n";

TEST(LocalesOf, AreOrderedByHowWellTheyMatch) {
    EXPECT_THAT(localesOf("sr_RS.UTF-8@latin"),
                ElementsAre("sr_RS@latin", "sr_RS", "sr@latin", "sr"));
    EXPECT_THAT(localesOf("de"), ElementsAre("de"));
    for (const char* none : {"", "C", "C.UTF-8", "POSIX"})
        EXPECT_THAT(localesOf(none), IsEmpty()) << none;
}

TEST(DesktopEntryFile, HasTheNameInTheUsersLanguage) {
    struct Row {
        std::string text;
        std::string name; ///< empty: not an application
    };
    for (const auto& [text, name] : std::vector<Row>{
             {kStart + "Name=N\nName[de]=D\nName[de_AT]=A\n", "A"},
             {kStart + "Name[de]=D\nName=N\nName[fr]=F", "D"},
             {kStart + "Name[de]=\nName=N\n", "N"},
             {"\xEF\xBB\xBF# comment\r\n\r\n" + kStart + " Name = N \r\n#Name=M\r\n", "N"},
             {"[Other]\nName=M\n" + kStart + "Name=N\n[Desktop Action a]\nName=M\n", "N"},
             {kStart + "Name=a\\sb\\\\c;d\\qe\n", "a b\\c;dqe"},
             {kStart + "Name=a\xFF"
                       "b\n",
              "a\xEF\xBF\xBD"
              "b"},
             {kStart + "Name=N\nName=M\n=\n[\n", "N"},
             {kStart + "Name\n", ""},
             {"[Desktop Entry]\nType=Link\nName=N\n", ""},
             {"Type=Application\nName=N\n", ""},
             {"", ""}}) {
        const auto file = parseDesktopEntry(text, {"de_AT", "de"});
        EXPECT_EQ(file ? file->entry.name : "", name) << text;
    }
}

TEST(DesktopEntryFile, ExpandsItsCommand) {
    struct Row {
        std::string command;
        std::vector<std::string> urls;
        std::vector<Command> commands; ///< empty: malformed
    };
    const std::string url = "file:///a%20b", web = "https://example.org/";
    for (const auto& [command, urls, commands] : std::vector<Row>{
             {"p", {}, {{"p"}}},
             {"p -x  \"a b\" c\\\\d \"\" \"\\\\\"q\\\\\\\\\"",
              {},
              {{"p", "-x", "a b", "c\\d", "", "\"q\\"}}},
             {"p %f", {}, {{"p"}}},
             {"p %f", {url, "/c"}, {{"p", "/a b"}, {"p", "/c"}}},
             {"p --to=%u", {"/a b", web}, {{"p", "--to=" + url}, {"p", "--to=" + web}}},
             {"p %F x", {url, web}, {{"p", "/a b", web, "x"}}},
             {"p %U", {"/a b", "/c"}, {{"p", url, "file:///c"}}},
             {"p", {"/a", "/b"}, {{"p"}}},
             {"p %i %c %k %% %d%D%n%N%v%m", {}, {{"p", "--icon", "I", "N", "/k", "%"}}},
             {"p %z", {}, {}},
             {"p %", {}, {}},
             {"p \"a", {}, {}},
             {" ", {}, {}},
             {"%f", {}, {}}}) {
        auto file = parseDesktopEntry(kStart + "Name=N\nIcon=I\nExec=" + command + '\n', {});
        ASSERT_TRUE(file);
        file->entry.path = "/k";
        EXPECT_THAT(commandsOf(*file, urls), ElementsAreArray(commands)) << command;
    }
}

class DesktopEntriesTest : public testing::Test {
  protected:
    void add(const std::string& name, const std::string& lines) const {
        data.write(name + ".desktop", kStart + lines);
    }
    std::string nameOf(const std::string& identifier) const {
        const auto file = entries.read(identifier + ".desktop");
        return file ? file->entry.name + (file->entry.isShown ? "" : " (not shown)") : "";
    }
    std::string match(const std::string& id, const std::string& instance = {},
                      const std::string& windowClass = {}) {
        return entries.identifierForWindow(id, instance, windowClass);
    }

    test::TemporaryFolder data;
    test::ScopedEnvironment home{"XDG_DATA_HOME", data.file("home")};
    test::ScopedEnvironment system{"XDG_DATA_DIRS",
                                   "relative::" + data.file("one") + ':' + data.file("two")};
    test::ScopedEnvironment desktop{"XDG_CURRENT_DESKTOP", "Example:GNOME"};
    DesktopEntries entries;
};

TEST_F(DesktopEntriesTest, AreReadFromTheFirstFolderThatHasThem) {
    add("home/applications/a", "Name=Home\n");
    add("one/applications/a", "Name=System\n");
    add("home/applications/deleted", "Hidden=true\n");
    add("one/applications/deleted", "Name=System\n");
    add("two/applications/kde/sub-folder/b-c", "Name=Deep\n");
    add("two/applications/hidden", "Name=H\nNoDisplay=true\n");
    add("two/applications/missing", "Name=M\nTryExec=/does/not/exist\n");
    add("two/applications/there", "Name=T\nTryExec=sh\nOnlyShowIn=KDE;GNOME;\nNotShowIn=X;\n");
    add("two/applications/elsewhere", "Name=E\nOnlyShowIn=KDE;\n");
    add("two/applications/not", "Name=N\nNotShowIn=Example\n");
    add("two/applications/large", "Name=L\n#" + std::string(1024 * 1024, ' '));
    add("two/outside", "Name=O\n");
    std::filesystem::create_directory(data.path() / "two/applications/folder.desktop");
    for (const auto& [identifier, name] :
         std::vector<std::pair<std::string, std::string>>{{"a", "Home"},
                                                          {"deleted", ""},
                                                          {"kde-sub-folder-b-c", "Deep"},
                                                          {"kde/sub-folder/b-c", ""},
                                                          {"hidden", "H (not shown)"},
                                                          {"missing", "M (not shown)"},
                                                          {"there", "T"},
                                                          {"elsewhere", "E (not shown)"},
                                                          {"not", "N (not shown)"},
                                                          {"large", ""},
                                                          {"../outside", ""},
                                                          {"..-outside", ""},
                                                          {"folder", ""},
                                                          {"", ""},
                                                          {"-", ""}})
        EXPECT_EQ(nameOf(identifier), name) << identifier;
}

TEST_F(DesktopEntriesTest, AreMatchedToWindows) {
    add("one/applications/org.example.Web", "Name=W\nStartupWMClass=Web\n");
    add("one/applications/app", "Name=A\nStartupWMClass=crx_1\n");
    add("one/applications/app-url", "Name=U\nNoDisplay=true\nStartupWMClass=Viewer\n");
    add("one/applications/viewer", "Name=V\nStartupWMClass=Viewer\n");
    add("one/applications/my-tool", "Name=M\n");
    add("one/applications/sub/tool", "Name=S\n");
    add("home/applications/gone", "Hidden=true\n");
    add("one/applications/gone", "Name=G\n");
    EXPECT_EQ(match("org.example.Web", "crx_1", "x"), "org.example.Web.desktop");
    EXPECT_EQ(match("unknown", "crx_1", "Web"), "app.desktop");
    EXPECT_EQ(match("", "navigator", "web"), "org.example.Web.desktop");
    EXPECT_EQ(match("", "", "Viewer"), "viewer.desktop");
    EXPECT_EQ(match("", "x", "My Tool"), "my-tool.desktop");
    EXPECT_EQ(match("", "Sub-Tool", "x"), "sub-tool.desktop");
    EXPECT_EQ(match("gone", "gone", "gone"), "");
    EXPECT_EQ(match("", "", ""), "");
    EXPECT_EQ(match("late"), "");
    add("home/applications/late", "Name=L\n");
    add("one/applications/sub/later", "Name=L\n");
    EXPECT_EQ(match("late") + match("sub-later"), "late.desktopsub-later.desktop");
}

} // namespace
