#include "platform/qt/X11Applications.h"
#include "testing/ItemUnderTest.h"
#include "tests/desktop/support/BackgroundProgram.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <optional>

using namespace platform;
using test::eventually;
using testing::ElementsAre;

namespace {

/// The switcher on a display with a window manager and real windows.
class X11SwitcherTest : public testing::Test {
  protected:
    X11SwitcherTest() {
        for (const char* name : {"Editor", "Mail", "Shell"})
            data.write("applications/" + std::string(name) + ".desktop",
                       "[Desktop Entry]\nType=Application\nName=" + std::string(name) +
                           "\nExec=" HALVEX_WINDOW_CLIENT " x " + name + " Started\n");
        Preferences settings(item.preferences.domain("com.quorvanesoftware.HalvexPro"), "Switcher");
        settings.set("Shows", PropertyList("name"));
        settings.set("Favourites", std::vector<std::string>{"Shell"});
    }
    void startManager() {
        const std::string ready = data.file("ready");
        std::filesystem::remove(ready);
        manager.emplace(
            x, "openbox",
            QStringList{"--sm-disable", "--startup", "touch " + QString::fromStdString(ready)});
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(ready); }));
    }
    void load() {
        ASSERT_TRUE(
            item.load("HalvexASMMenu",
                      {{"CFBundleIdentifier", PropertyList("com.quorvanesoftware.HalvexProASM")}}));
    }
    std::unique_ptr<test::BackgroundProgram> start(const QString& name, QStringList titles) {
        auto program = std::make_unique<test::BackgroundProgram>(x, HALVEX_WINDOW_CLIENT,
                                                                 QStringList{"x", name} + titles);
        EXPECT_TRUE(eventually([&] { return item.title() == name.toStdString(); }));
        return program;
    }
    /// The applications in the menu, in order.
    std::vector<std::string> listed() const {
        item.extra().menuWillOpen();
        std::vector<std::string> names;
        for (const auto& entry : item.extra().menu()->items()) {
            if (entry->isSeparatorItem())
                break;
            if (entry->alternateModifiers() == 0)
                names.push_back(entry->title() +
                                (entry->trailingText().empty() ? "" : " " + entry->trailingText()));
        }
        item.extra().menuDidClose();
        return names;
    }
    bool becomes(const std::vector<std::string>& expected) {
        const bool is = eventually([&] { return listed() == expected; });
        EXPECT_THAT(listed(), testing::ElementsAreArray(expected));
        return is;
    }

    test::XServer x;
    test::TemporaryFolder data;
    test::ScopedEnvironment home{"XDG_DATA_HOME", data.path()};
    test::ScopedEnvironment system{"XDG_DATA_DIRS", data.file("none")};
    test::ScopedEnvironment display{"DISPLAY", x.display().toStdString()};
    std::optional<test::BackgroundProgram> manager;
    std::optional<qt::X11Applications> applications{x.display().toStdString()};
    ScopedService<Applications> service{*applications};
    halvextest::ItemUnderTest item;
};

TEST_F(X11SwitcherTest, ActivatesShowsHidesLaunchesAndQuitsApplications) {
    startManager();
    load();
    const auto editor = start("Editor", {"One", "Two"});
    const auto mail = start("Mail", {"Inbox"});
    EXPECT_TRUE(becomes({"Mail", "Editor"}));
    EXPECT_TRUE(item.choose("Shell"));
    EXPECT_TRUE(eventually([&] { return item.title() == "Shell"; }));
    EXPECT_TRUE(becomes({"Shell", "Mail", "Editor"}));
    EXPECT_TRUE(item.choose("Mail"));
    EXPECT_TRUE(eventually([&] { return item.title() == "Mail"; }));
    EXPECT_TRUE(becomes({"Mail", "Shell", "Editor"}));

    EXPECT_TRUE(item.choose("Show Only Editor"));
    EXPECT_TRUE(eventually([&] { return item.title() == "Editor"; }));
    EXPECT_TRUE(becomes({"Editor", "Mail hidden", "Shell hidden"}));
    EXPECT_TRUE(item.choose("Mail"));
    EXPECT_TRUE(becomes({"Mail", "Editor", "Shell hidden"}));
    EXPECT_TRUE(item.choose("Show All"));
    EXPECT_TRUE(eventually([&] { return std::ranges::count(listed(), "Shell") == 1; }));

    item.extra().menuWillOpen();
    const auto& entries = item.extra().menu()->items();
    const auto row = *std::ranges::find(entries, "Editor", &MenuItem::title);
    const auto window = row->submenu()->items().at(1);
    EXPECT_TRUE(window->perform());
    EXPECT_TRUE(eventually([&] { return window->state() == MenuItem::State::On; }))
        << "the open menu follows";
    item.extra().menuDidClose();

    EXPECT_TRUE(item.choose("Quit Editor"));
    EXPECT_TRUE(eventually([&] { return editor->process.state() == QProcess::NotRunning; }));
    EXPECT_TRUE(eventually([&] { return listed().size() == 2; }));
}

TEST_F(X11SwitcherTest, FollowsTheWindowManagerAndShowsManyWindows) {
    load();
    EXPECT_THAT(listed(), ElementsAre("This desktop does not list its applications"));
    startManager();
    EXPECT_TRUE(becomes({"No open windows"}));
    QStringList titles;
    for (int i = 0; i < 100; ++i)
        titles << (i % 2 == 0 ? "" : QString::number(i));
    const auto editor = start("Editor", titles);
    const auto windows = [&] {
        item.extra().menuWillOpen();
        const auto submenu = item.extra().menu()->items().front()->submenu();
        item.extra().menuDidClose();
        return submenu ? submenu->items().size() : 0;
    };
    EXPECT_TRUE(eventually([&] { return windows() == 100; }));
    manager->kill();
    EXPECT_TRUE(becomes({"This desktop does not list its applications"}));
    EXPECT_TRUE(eventually([&] { return item.title().empty(); }));
    startManager();
    EXPECT_TRUE(eventually([&] { return windows() == 100; }));
}

} // namespace
