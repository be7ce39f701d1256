#include "testing/ItemUnderTest.h"
#include "testing/ManualApplications.h"

#include <gmock/gmock.h>

using namespace platform;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kIdentifier = "com.quorvanesoftware.HalvexProASM";

class HalvexASMMenu : public testing::Test {
  protected:
    HalvexASMMenu() {
        for (const char* name : {"Editor", "Mail", "Shell"})
            applications.installed.push_back({.identifier = std::string(name) + ".desktop",
                                              .name = name,
                                              .comment = "A program"});
        applications.icons["Editor.desktop"] = icon;
    }
    void load() {
        ASSERT_TRUE(
            item.load("HalvexASMMenu", {{"CFBundleIdentifier", PropertyList(kIdentifier)}}));
    }
    Preferences settings() {
        return Preferences(item.preferences.domain("com.quorvanesoftware.HalvexPro"), "Switcher");
    }
    void setFavourites(const std::vector<std::string>& names) {
        settings().set("Favourites", names);
    }
    /// An installed application with one window, or one for each title.
    static RunningApplication running(const std::string& name,
                                      const std::vector<std::string>& titles = {"One"}) {
        RunningApplication application{
            .identifier = name + ".desktop", .name = name, .hasDesktopEntry = true};
        for (const std::string& title : titles)
            application.windows.push_back({.identifier = ++lastWindow, .title = title});
        return application;
    }
    static RunningApplication active(RunningApplication application) {
        application.isActive = application.windows.front().isActive = true;
        return application;
    }
    static RunningApplication hidden(RunningApplication application) {
        application.isHidden = application.windows.front().isMinimised = true;
        return application;
    }
    const std::shared_ptr<MenuItem>& entry(const std::string& title) const {
        return *std::ranges::find(item.extra().menu()->items(), title, &MenuItem::title);
    }
    /// Titles of the open menu without alternates, each with its subtitle and trailing text.
    std::vector<std::string> shown() const {
        std::vector<std::string> result;
        for (const auto& entry : item.extra().menu()->items())
            if (entry->alternateModifiers() == 0 && !entry->isSeparatorItem())
                result.push_back(
                    (entry->state() == MenuItem::State::On ? "*" : "") + entry->title() +
                    (entry->subtitle().empty() ? "" : " / " + entry->subtitle()) +
                    (entry->trailingText().empty() ? "" : " | " + entry->trailingText()));
        return result;
    }

    static inline std::uint64_t lastWindow = 0;
    halvextest::ManualApplications applications;
    halvextest::ItemUnderTest item;
    const std::shared_ptr<Image> icon = std::make_shared<halvextest::BlankImage>(16, 16);
};

TEST_F(HalvexASMMenu, ShowsTheActiveApplicationAsItsIconOrName) {
    load();
    const auto placeholder = item.extra().image();
    ASSERT_NE(placeholder, nullptr);
    EXPECT_TRUE(placeholder->isTemplate());
    const auto accessible = [&] { return item.extra().view()->accessibleDescription().value; };
    EXPECT_EQ(accessible(), "No active application");

    const std::string longName = "Größenverzeichnis";
    struct Row {
        const char* shows;
        int width;
        std::string name;
        std::shared_ptr<Image> image;
        std::string title;
    };
    // Each byte is 7 points wide.
    for (const auto& [shows, width, name, image, title] :
         std::vector<Row>{{"icon", 160, "Editor", icon, ""},
                          {"icon", 160, "Shell", nullptr, "Shell"},
                          {"name", 1000, "Editor", nullptr, "Editor"},
                          {"both", 160, "Editor", icon, "Editor"},
                          {"name", 42, "Editor", nullptr, "Editor"},
                          {"name", 41, "Editor", nullptr, "Ed…"},
                          {"name", 7 * 6, longName, nullptr, "Gr…"},
                          {"name", 7 * 7, longName, nullptr, "Grö…"},
                          {"name", 7 * 8, "Web of Trust", nullptr, "Web o…"},
                          {"name", 7 * 7, "Web of Trust", nullptr, "Web…"},
                          {"name", 20, longName, nullptr, "…"},
                          {"both", 160, "", placeholder, ""}}) {
        settings().set("Shows", PropertyList(shows));
        settings().set("NameWidth", PropertyList(width));
        applications.setRunning({running("Other"), active(running(name))});
        EXPECT_EQ(item.title(), title) << name;
        EXPECT_EQ(item.extra().image(), image) << name;
        EXPECT_EQ(accessible(), name);
    }
    applications.setRunning({running("Other")});
    EXPECT_EQ(item.extra().image(), placeholder);
    EXPECT_EQ(item.title(), "");
}

TEST_F(HalvexASMMenu, RedrawsItsTitleOnlyWhenThatChanges) {
    load();
    applications.setRunning({active(running("Editor"))});
    item.host.redisplays = 0;
    applications.setRunning({active(running("Editor", {"Another title"})), running("Mail")});
    EXPECT_EQ(item.host.redisplays, 0);
    applications.icons["Editor.desktop"] = std::make_shared<halvextest::BlankImage>(16, 16);
    applications.setRunning({active(running("Editor"))});
    EXPECT_GT(item.host.redisplays, 0) << "an icon of the same width";
    EXPECT_EQ(item.extra().image(), applications.icons["Editor.desktop"]);
}

TEST_F(HalvexASMMenu, ReplacesPreferencesThatItCannotUse) {
    settings().set("Shows", PropertyList("all"));
    load();
    applications.setRunning({active(running("Editor"))});
    settings().set("NameWidth", PropertyList(19));
    setFavourites({"Mail"});
    EXPECT_EQ(item.extra().image(), icon);
    settings().set("Shows", PropertyList("name"));
    EXPECT_EQ(item.title(), "Editor");
    settings().set("NameWidth", PropertyList(1001));
    std::vector<std::string> lines = item.log.take();
    std::erase_if(lines, [](const auto& line) { return !line.starts_with("cannot use"); });
    EXPECT_THAT(lines, ElementsAre(testing::HasSubstr("all is not icon, name or both"),
                                   testing::HasSubstr("SwitcherNameWidth"),
                                   testing::HasSubstr("SwitcherNameWidth")));
}

TEST_F(HalvexASMMenu, ListsApplicationsInOrderOfUse) {
    load();
    auto flashing = running("Alarm");
    flashing.windows.front().needsAttention = true;
    applications.setRunning({active(running("Editor")), hidden(running("Mail")), flashing,
                             running("Twin", {"A"}), hidden(running("Copy", {"", "B"})),
                             running("Same", {"A"}), running("Blank", {""})});
    auto all = applications.running();
    all[4].name = all[5].name = all[6].name = "Twin";
    applications.setRunning(all);
    item.extra().menuWillOpen();
    EXPECT_THAT(shown(), ElementsAre("*Editor", "Mail | hidden", "Alarm | needs attention",
                                     "Twin / Twin.desktop", "Twin / B | hidden",
                                     "Twin / Same.desktop", "Twin / Blank.desktop",
                                     "Add Editor to Favourites", "Hide Others", "Show All"));
    EXPECT_EQ(entry("Editor")->image(), icon);
    EXPECT_NE(entry("Mail")->image(), nullptr) << "names line up";
}

TEST_F(HalvexASMMenu, SendsWhatTheChosenEntrySays) {
    load();
    const auto editor = active(running("Editor"));
    const auto mail = hidden(running("Mail"));
    const std::vector all{editor, mail, running("Shell")};
    struct Row {
        const char* entry;
        std::uint32_t modifiers;
        std::vector<std::string> requests;
    };
    for (const auto& [title, modifiers, requests] :
         std::vector<Row>{{"Editor", 0, {"activate Editor.desktop"}},
                          {"Show Only Shell",
                           kOptionKeyMask,
                           {"activate Shell.desktop", "hide others Shell.desktop"}},
                          {"Quit Shell", kControlKeyMask, {"quit Shell.desktop"}},
                          {"Mail", 0, {"show Mail.desktop", "activate Mail.desktop"}},
                          {"Hide Others", 0, {"hide others Editor.desktop"}},
                          {"Show All", 0, {"show Mail.desktop"}}}) {
        applications.setRunning(all);
        applications.requests.clear();
        EXPECT_TRUE(item.choose(title)) << title;
        EXPECT_EQ(applications.requests, requests) << title;
        EXPECT_EQ(entry(title)->alternateModifiers(), modifiers) << title;
    }
    applications.setRunning({editor});
    EXPECT_THAT(item.menuTitles(), ElementsAre("* Editor", "* Show Only Editor", "* Quit Editor",
                                               "-", "Add Editor to Favourites"));
}

TEST_F(HalvexASMMenu, HasTheWindowsOfAnApplicationInASubmenu) {
    load();
    auto editor = active(running("Editor", std::vector<std::string>(100, "Text")));
    editor.windows[1].title = "";
    editor.windows[1].isMinimised = true;
    editor.windows[2].title = std::string(90, 'x');
    applications.setRunning({editor, running("Mail")});
    item.extra().menuWillOpen();
    const auto submenu = entry("Editor")->submenu();
    ASSERT_NE(submenu, nullptr);
    EXPECT_EQ(entry("Quit Editor")->submenu(), nullptr);
    EXPECT_EQ(entry("Mail")->submenu(), nullptr);
    const auto windows = submenu->items();
    ASSERT_EQ(windows.size(), 100U);
    EXPECT_EQ(windows[0]->state(), MenuItem::State::On);
    EXPECT_EQ(windows[1]->title() + windows[1]->trailingText(), "Untitledminimised");
    EXPECT_EQ(windows[2]->title(), std::string(48, 'x') + "…");
    EXPECT_EQ(windows[2]->toolTip(), editor.windows[2].title);
    EXPECT_TRUE(windows[1]->perform());
    EXPECT_THAT(applications.requests,
                ElementsAre("activate window " + std::to_string(editor.windows[1].identifier)));

    std::swap(editor.windows[0], editor.windows[1]);
    editor.windows.resize(2);
    applications.setRunning({editor});
    EXPECT_THAT(submenu->items(), ElementsAre(windows[1], windows[0]));
    editor.windows.resize(1);
    applications.setRunning({editor});
    EXPECT_EQ(entry("Editor")->submenu(), nullptr);
}

TEST_F(HalvexASMMenu, KeepsThePlacesOfApplicationsWhileTheMenuIsOpen) {
    load();
    const auto editor = running("Editor"), mail = running("Mail"), shell = running("Shell");
    applications.setRunning({active(editor), mail});
    item.extra().menuWillOpen();
    const auto row = entry("Mail");
    applications.setRunning({active(shell), mail, editor});
    EXPECT_THAT(shown(),
                ElementsAre("Editor", "Mail", "*Shell", "Add Shell to Favourites", "Hide Others"));
    EXPECT_EQ(entry("Mail"), row);
    applications.setRunning({active(shell), mail});
    EXPECT_THAT(shown(), ElementsAre("Mail", "*Shell", "Add Shell to Favourites", "Hide Others"));
    item.extra().menuDidClose();
    applications.setRunning({active(editor), shell});
    EXPECT_EQ(shown().front(), "Mail") << "a closed menu costs nothing";
    item.extra().menuWillOpen();
    EXPECT_THAT(shown(),
                ElementsAre("*Editor", "Shell", "Add Editor to Favourites", "Hide Others"));
}

TEST_F(HalvexASMMenu, OffersTheFavouritesThatAreNotRunning) {
    setFavourites({"Mail", "Missing", "Editor.desktop", "Shell", "Mail.desktop"});
    load();
    auto windowClass = running("X");
    windowClass.hasDesktopEntry = false;
    applications.setRunning({active(windowClass), running("Editor")});
    for (int i = 0; i < 2; ++i) {
        item.extra().menuWillOpen();
        EXPECT_THAT(shown(),
                    ElementsAre("*X", "Editor", "Favourites", "Mail", "Shell", "Hide Others"));
    }
    EXPECT_EQ(std::ranges::count(item.log.take(), "cannot show the favourite Missing.desktop: "
                                                  "there is no desktop entry with this name"),
              1);
    EXPECT_EQ(entry("Mail")->toolTip(), "A program");
    EXPECT_TRUE(item.choose("Shell"));
    EXPECT_THAT(applications.requests, ElementsAre("launch Shell.desktop"));
    EXPECT_EQ(entry("Remove Mail from Favourites")->alternateModifiers(), kControlKeyMask);
    EXPECT_TRUE(item.choose("Remove Mail from Favourites"));
    EXPECT_THAT(settings().strings("Favourites"),
                ElementsAre("Missing.desktop", "Editor.desktop", "Shell.desktop"));

    applications.setRunning({active(running("Editor"))});
    EXPECT_TRUE(item.choose("Remove Editor from Favourites"));
    EXPECT_TRUE(item.choose("Add Editor to Favourites"));
    EXPECT_THAT(settings().strings("Favourites"),
                ElementsAre("Missing.desktop", "Shell.desktop", "Editor.desktop"));
}

TEST_F(HalvexASMMenu, SaysWhyNoApplicationIsListed) {
    load();
    EXPECT_THAT(item.menuTitles(), ElementsAre("(No open windows)"));
    applications.providesRunning = false;
    setFavourites({"Mail"});
    EXPECT_THAT(item.menuTitles(),
                ElementsAre("(This desktop does not list its applications)", "-", "(Favourites)",
                            "Mail", "Remove Mail from Favourites"));
}

TEST_F(HalvexASMMenu, ObservesNothingAfterItIsUnloaded) {
    load();
    EXPECT_TRUE(applications.isObserved());
    item.extra().willUnload();
    EXPECT_FALSE(applications.isObserved());
    settings().set("Shows", PropertyList("name"));
}

} // namespace
