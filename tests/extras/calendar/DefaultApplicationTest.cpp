#include "extras/calendar/DefaultApplication.h"
#include "testing/ManualApplications.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(DefaultApplication, IsTheUsersChoiceThenTheSystemsThenAnyInstalledOne) {
    const test::TemporaryFolder folder;
    const test::ScopedEnvironment environment[] = {
        {"XDG_CONFIG_HOME", folder.file("config")},
        {"XDG_CONFIG_DIRS", folder.file("etc1") + ':' + folder.file("etc2")},
        {"XDG_DATA_HOME", folder.file("data")},
        {"XDG_DATA_DIRS", folder.file("share")},
        {"XDG_CURRENT_DESKTOP", "Ubuntu:GNOME"}};
    halvextest::ManualApplications applications;
    for (const char* name : {"a.desktop", "b.desktop", "c.desktop", "d.desktop", "e.desktop"})
        applications.installed.push_back({.identifier = name, .name = name});
    const auto expect = [](const char* entry) {
        EXPECT_EQ(extras::defaultApplication("text/calendar"), entry);
    };
    const std::string group = "[Default Applications]\ntext/calendar=";

    expect("");
    folder.write("share/applications/mimeinfo.cache",
                 "[MIME Cache]\ntext/plain=b.desktop;\ntext/calendar=removed.desktop;a.desktop;\n");
    expect("a.desktop");
    folder.write("share/applications/mimeapps.list", group + "b.desktop\n");
    expect("b.desktop");
    folder.write("etc2/gnome-mimeapps.list", group + "c.desktop;\n");
    expect("c.desktop");
    folder.write("etc1/mimeapps.list", group + "d.desktop\n");
    expect("d.desktop");
    folder.write("config/mimeapps.list", "[Added Associations]\ntext/calendar=a.desktop\n\n" +
                                             group +
                                             "removed.desktop\n[Other]\n"
                                             "text/calendar=b.desktop\n");
    expect("d.desktop");
    folder.write("config/mimeapps.list", group + "removed.desktop;e.desktop\n");
    expect("e.desktop");
}

} // namespace
