#include "platform/qt/X11Applications.h"

#include "platform/base/Exception.h"
#include "platform/runtime/Guard.h"
#include "tests/desktop/support/BackgroundProgram.h"
#include "tests/desktop/support/FakeService.h"
#include "tests/desktop/support/XServer.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"

#include <QDBusArgument>

#include <gmock/gmock.h>

#include <optional>
#include <ranges>
#include <unistd.h>

using namespace platform;
using test::eventually;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kNoManager =
    "applications are not listed: there is no window manager that follows EWMH";

/// "Name" and its windows' titles. Active ones have a "*", minimised or hidden ones a "-", one that
/// needs attention a "!".
std::string words(const RunningApplication& application) {
    const auto flag = [](bool isSet, const char* mark) { return isSet ? mark : ""; };
    std::string words =
        application.name + flag(application.isActive, "*") + flag(application.isHidden, "-") + ':';
    for (const auto& [identifier, title, isActive, isMinimised, needsAttention] :
         application.windows)
        words +=
            ' ' + title + flag(isActive, "*") + flag(isMinimised, "-") + flag(needsAttention, "!");
    return words;
}

class X11ApplicationsTest : public testing::Test {
  protected:
    X11ApplicationsTest() {
        entry("editor", "Name=Editor\nName[de]=Schreiber\nStartupWMClass=crx_editor\n");
        entry("org.example.Terminal", "Name=Terminal\n");
    }
    void entry(const std::string& name, const std::string& lines) const {
        data.write("applications/" + name + ".desktop",
                   "[Desktop Entry]\nType=Application\n" + lines);
    }
    /// Waits until the window manager is ready: until then, it does not focus new windows.
    void startManager() {
        const std::string ready = data.file("ready");
        std::filesystem::remove(ready);
        const QString command = "touch " + QString::fromStdString(ready);
        manager.emplace(x, "openbox", QStringList{"--sm-disable", "--startup", command});
        EXPECT_TRUE(eventually([&] { return std::filesystem::exists(ready); }));
    }
    std::unique_ptr<test::BackgroundProgram> start(const QStringList& arguments) const {
        return std::make_unique<test::BackgroundProgram>(x, HALVEX_WINDOW_CLIENT, arguments);
    }
    std::unique_ptr<Watch> observe() {
        return service->observe([this] { changed = list(); });
    }
    std::vector<std::string> list() {
        std::vector<std::string> all;
        for (const auto& application : service->running())
            all.push_back(words(application));
        return all;
    }
    /// Waits until the handler of observe has seen this list.
    bool becomes(const std::vector<std::string>& expected) {
        const bool is = eventually([&] { return changed == expected; });
        EXPECT_THAT(changed, testing::ElementsAreArray(expected));
        return is;
    }
    ApplicationWindow window(const std::string& title) {
        for (const auto& application : service->running())
            for (const auto& candidate : application.windows)
                if (candidate.title == title)
                    return candidate;
        return {};
    }
    template <class T>
    void set(std::uint64_t of, const char* property, const char* type, std::uint8_t format,
             const std::vector<T>& values) const {
        xcb_change_property(x.connection(), XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(of),
                            x.atom(property), x.atom(type), format,
                            static_cast<std::uint32_t>(values.size()), values.data());
        xcb_flush(x.connection());
    }
    std::string text(std::uint64_t of, const char* property) const {
        const auto reply = test::owned(xcb_get_property_reply(
            x.connection(),
            xcb_get_property(x.connection(), 0, static_cast<xcb_window_t>(of), x.atom(property),
                             XCB_ATOM_ANY, 0, 256),
            nullptr));
        return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
    }

    test::XServer x;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x.connection())).data->root;
    test::TemporaryFolder data;
    test::ScopedEnvironment home{"XDG_DATA_HOME", data.path()};
    test::ScopedEnvironment system{"XDG_DATA_DIRS", data.file("none")};
    test::ScopedEnvironment locale{"LC_ALL", "de_AT.UTF-8"};
    test::RecordingLog log;
    std::optional<test::BackgroundProgram> manager;
    std::optional<qt::X11Applications> service{x.display().toStdString()};
    std::vector<std::string> changed{"not called"};
};

TEST_F(X11ApplicationsTest, AreGroupedAndInOrderOfUse) {
    startManager();
    const auto watch = observe();
    const auto editor = start({"crx_editor", "Browser", "One"});
    EXPECT_TRUE(becomes({"Schreiber*: One*"}));
    const auto terminal = start({"t", "Org.example.terminal", "Shell"});
    EXPECT_TRUE(becomes({"Terminal*: Shell*", "Schreiber: One"}));
    const auto editor2 = start({"crx_editor", "Browser", "Two"});
    EXPECT_TRUE(becomes({"Schreiber*: Two* One", "Terminal: Shell"}));
    const auto other = start({"other", "Other", "Größe"});
    EXPECT_TRUE(becomes({"Other*: Größe*", "Schreiber: Two One", "Terminal: Shell"}));

    EXPECT_TRUE(service->activateWindow(window("One").identifier));
    EXPECT_TRUE(becomes({"Schreiber*: One* Two", "Other: Größe", "Terminal: Shell"}));
    EXPECT_TRUE(service->activate("org.example.Terminal.desktop"));
    EXPECT_TRUE(becomes({"Terminal*: Shell*", "Schreiber: One Two", "Other: Größe"}));
    EXPECT_EQ(service->running()[0].process, terminal->process.processId());
    // The dialog of a window, also if it is not a window of its own.
    set<std::uint32_t>(window("Two").identifier, "WM_TRANSIENT_FOR", "WINDOW", 32,
                       {static_cast<std::uint32_t>(window("One").identifier)});
    EXPECT_TRUE(becomes({"Terminal*: Shell*", "Schreiber: One", "Other: Größe"}));
    EXPECT_FALSE(service->activate("Größe"));
    EXPECT_FALSE(service->activateWindow(1));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(X11ApplicationsTest, AreHiddenShownAndAskedToQuit) {
    startManager();
    const auto watch = observe();
    const auto editor = start({"editor", "Editor", "One"});
    EXPECT_TRUE(becomes({"Schreiber*: One*"}));
    const auto editor2 = start({"editor", "Editor", "Two"});
    EXPECT_TRUE(becomes({"Schreiber*: Two* One"}));
    const auto other = start({"other", "Other", "Three"});
    EXPECT_TRUE(becomes({"Other*: Three*", "Schreiber: Two One"}));
    x.act({"windowminimize", QString::number(window("One").identifier)});
    EXPECT_TRUE(becomes({"Other*: Three*", "Schreiber: Two One-"}));

    EXPECT_TRUE(service->hideOthers("Other"));
    EXPECT_TRUE(becomes({"Other*: Three*", "Schreiber-: Two- One-"}));
    EXPECT_TRUE(service->show("editor.desktop"));
    EXPECT_TRUE(becomes({"Schreiber*: Two* One-", "Other: Three"})) << "as before";
    EXPECT_TRUE(service->hide("editor.desktop"));
    EXPECT_TRUE(becomes({"Other*: Three*", "Schreiber-: Two- One-"}));
    EXPECT_TRUE(service->activate("editor.desktop"));
    EXPECT_TRUE(becomes({"Schreiber*: Two* One-", "Other: Three"}));
    EXPECT_TRUE(service->quit("editor.desktop"));
    EXPECT_TRUE(becomes({"Other*: Three*"}));
    EXPECT_TRUE(eventually([&] { return editor->process.state() == QProcess::NotRunning; }));
    for (const auto operation :
         {&Applications::hide, &Applications::hideOthers, &Applications::show, &Applications::quit})
        EXPECT_FALSE(((*service).*operation)("editor.desktop"));
}

TEST_F(X11ApplicationsTest, HaveOnlyTheWindowsThatUsersTellApart) {
    startManager();
    const auto watch = observe();
    const auto client = start({"a", "A", "One"});
    EXPECT_TRUE(becomes({"A*: One*"}));
    const auto other = start({"b", "B", "Two"});
    EXPECT_TRUE(becomes({"B*: Two*", "A: One"}));
    const std::uint64_t id = window("Two").identifier;
    struct Row {
        const char* property;
        std::vector<std::string> values;
        bool isListed;
    };
    const char *type = "_NET_WM_WINDOW_TYPE", *state = "_NET_WM_STATE";
    for (const auto& [property, names, isListed] : std::vector<Row>{
             {type, {"_NET_WM_WINDOW_TYPE_UTILITY", "_NET_WM_WINDOW_TYPE_NORMAL"}, false},
             {type, {"_EXAMPLE_OWN", "_NET_WM_WINDOW_TYPE_NORMAL"}, true},
             {type, {"_NET_WM_WINDOW_TYPE_DOCK"}, false},
             {type, {"_NET_WM_WINDOW_TYPE_DIALOG"}, true},
             {state, {"_NET_WM_STATE_SKIP_TASKBAR"}, false},
             {state, {"_NET_WM_STATE_DEMANDS_ATTENTION"}, true}}) {
        std::vector<std::uint32_t> atoms;
        for (const std::string& name : names)
            atoms.push_back(x.atom(name));
        set(id, property, "ATOM", 32, atoms);
        EXPECT_TRUE(eventually([&, count = isListed ? 2U : 1U] { return changed.size() == count; }))
            << names[0];
    }
    EXPECT_TRUE(becomes({"B*: Two*!", "A: One"}));
    const auto own = static_cast<std::uint32_t>(getpid());
    set<std::uint32_t>(id, "_NET_WM_PID", "CARDINAL", 32, {own});
    EXPECT_TRUE(becomes({"A: One"})) << "this process's are left out";
}

TEST_F(X11ApplicationsTest, FollowTheWindowManager) {
    const auto watch = observe();
    const auto editor = start({"editor", "Editor", "One"});
    EXPECT_TRUE(eventually([&] { return log.contains(kNoManager); }));
    EXPECT_THAT(list(), IsEmpty());
    EXPECT_FALSE(service->providesList());
    startManager();
    EXPECT_TRUE(becomes({"Schreiber: One"}) || becomes({"Schreiber*: One*"}));
    EXPECT_TRUE(service->providesList());
    manager->kill();
    EXPECT_TRUE(becomes({}));
    EXPECT_FALSE(service->providesList());
    startManager();
    EXPECT_TRUE(eventually([&] { return changed.size() == 1; }));
    test::BackgroundProgram successor(x, "openbox", {"--sm-disable", "--replace"});
    EXPECT_TRUE(manager->process.waitForFinished(5000));
    EXPECT_TRUE(eventually([&] { return changed.size() == 1; }));
    const auto other = start({"other", "Other", "New"});
    EXPECT_TRUE(eventually([&] { return changed.size() == 2; }));
    EXPECT_THAT(log.take(), ElementsAre(kNoManager));
}

TEST_F(X11ApplicationsTest, ReportThatTheListIsProvidedBeforeThereIsAWindow) {
    const auto watch = observe();
    EXPECT_TRUE(becomes({}));
    changed = {"not called"};
    startManager();
    EXPECT_TRUE(becomes({}));
    EXPECT_TRUE(service->providesList());
}

TEST_F(X11ApplicationsTest, WithoutADisplayThereAreNone) {
    service.emplace(); // this program's: "offscreen"
    const auto watch = observe();
    EXPECT_THAT(list(), IsEmpty());
    EXPECT_THAT(list(), IsEmpty());
    EXPECT_FALSE(service->activate("editor.desktop"));
    EXPECT_EQ(service->desktopEntry("editor.desktop")->name, "Schreiber");
    EXPECT_THAT(log.take(),
                ElementsAre("applications are not listed: this program is not on an X11 display"));
}

TEST_F(X11ApplicationsTest, CostNothingUnlessObserved) {
    const auto descriptors = [] {
        return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/fd"));
    };
    startManager();
    const auto editor = start({"editor", "Editor", "One"});
    const auto before = descriptors();
    EXPECT_TRUE(eventually([&] { return list() == std::vector<std::string>{"Schreiber*: One*"}; }));
    EXPECT_TRUE(eventually([&] { return descriptors() == before; }));
    auto watch = observe();
    int calls = 0;
    auto stopped = service->observe([&] { ++calls; });
    stopped.reset();
    EXPECT_TRUE(becomes({"Schreiber*: One*"}));
    EXPECT_GT(descriptors(), before);
    watch.reset();
    EXPECT_TRUE(eventually([&] { return descriptors() == before; }));
    EXPECT_EQ(calls, 0);
}

TEST_F(X11ApplicationsTest, HandlersAreGuardedAndMayDestroyTheirWatch) {
    startManager();
    std::string owner;
    std::unique_ptr<Watch> watch;
    runGuarded("item", [&] {
        watch = service->observe([&] {
            owner = currentOwner();
            watch.reset();
            throw Exception("Test", "thrown");
        });
    });
    const auto rest = observe();
    const auto editor = start({"editor", "Editor", "One"});
    EXPECT_TRUE(becomes({"Schreiber*: One*"}));
    EXPECT_EQ(owner, "item");
    EXPECT_THAT(log.take(), ElementsAre("item raised an exception: Test   reason: thrown"));
}

TEST_F(X11ApplicationsTest, SurviveProgramsThatSetGarbage) {
    startManager();
    const auto watch = observe();
    const auto client = start({"a", "A", "One"});
    EXPECT_TRUE(becomes({"A*: One*"}));
    const std::uint64_t id = window("One").identifier;
    const std::vector<std::uint32_t> numbers(5000, 0x41414141);
    for (const char* property : {"WM_CLASS", "_NET_WM_NAME", "_GTK_APPLICATION_ID",
                                 "WM_CLIENT_MACHINE", "_KDE_NET_WM_DESKTOP_FILE"})
        set(id, property, "CARDINAL", 32, numbers);
    for (const char* property : {"_NET_WM_PID", "WM_TRANSIENT_FOR", "_NET_WM_WINDOW_TYPE"})
        set<std::uint8_t>(id, property, "STRING", 8, {'x'});
    set(id, "_NET_WM_ICON", "CARDINAL", 32, numbers);
    set<std::uint8_t>(id, "WM_NAME", "STRING", 8, {'G', 'r', 0xFC, 0xDF, 'e'});
    const std::string unknown = "window:" + std::to_string(id);
    EXPECT_TRUE(eventually([&] { return service->running().at(0).identifier == unknown; }));
    EXPECT_TRUE(becomes({"Grüße*: Grüße*"})) << changed.at(0);
    service->icon(unknown, 16);
    set<std::uint8_t>(id, "_NET_WM_NAME", "UTF8_STRING", 8, {'a', 0xFF, 'b'});
    EXPECT_TRUE(eventually([&] { return changed.at(0).ends_with("a\uFFFDb*"); }));

    std::vector<std::uint32_t> icon(2 + 16 * 16, 0xFF00FF00);
    icon[0] = icon[1] = 16;
    changed = {};
    set(id, "_NET_WM_ICON", "CARDINAL", 32, icon);
    EXPECT_TRUE(eventually([&] { return !changed.empty(); })) << "a new icon is a change";
    const auto image = service->icon(unknown, 16);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(service->icon(unknown, 16), image) << "cached";
    // Lists of windows that do not exist, also in place of the window manager's own.
    set(root, "_NET_CLIENT_LIST_STACKING", "WINDOW", 32, numbers);
    set(root, "_NET_CLIENT_LIST", "WINDOW", 32, numbers);
    EXPECT_TRUE(becomes({}));
    set(root, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, numbers);
    EXPECT_TRUE(eventually([&] { return log.contains(kNoManager); }));
}

TEST_F(X11ApplicationsTest, AreLaunchedWithATokenForTheFocus) {
    startManager();
    const auto watch = observe();
    const auto other = start({"other", "Other", "Here"});
    const std::string client = HALVEX_WINDOW_CLIENT;
    const test::ScopedEnvironment display("DISPLAY", x.display().toStdString());
    entry("editor", "Name=Editor\nStartupNotify=true\nPath=" + data.file("") + "\nExec=" + client +
                        " editor \"Editor\" %c %f\n");
    EXPECT_TRUE(service->launch("editor.desktop", {"file:///a%20b", "/c"}));
    EXPECT_TRUE(eventually([&] { return window("/a b").identifier && window("/c").identifier; }));
    EXPECT_TRUE(eventually([&] { return window("/a b").isActive || window("/c").isActive; }));
    const std::string token = text(window("/c").identifier, "_NET_STARTUP_ID");
    EXPECT_THAT(token, testing::MatchesRegex("halvex-[0-9]+-1-.*_TIME[1-9][0-9]*"));
    service->quit("editor.desktop");

    entry("missing", "Name=Missing\nExec=/does/not/exist\n");
    entry("broken", "Name=Broken\nExec=\"sh\n");
    for (const char* identifier : {"missing.desktop", "broken.desktop", "none.desktop"})
        EXPECT_FALSE(service->launch(identifier, {}));
    EXPECT_THAT(
        log.take(),
        ElementsAre("cannot launch missing.desktop: /does/not/exist: No such file or directory",
                    "cannot launch broken.desktop: its command is missing or invalid",
                    "cannot launch none.desktop: there is no desktop entry with this identifier"));
}

TEST_F(X11ApplicationsTest, AreLaunchedOverTheBusIfItCanStartThem) {
    startManager();
    const auto watch = observe();
    test::PrivateBus bus;
    const test::ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS", bus.addressText());
    const test::ScopedEnvironment display("DISPLAY", x.display().toStdString());
    QStringList calls;
    const test::FakeService application(
        bus.connection(), "org.example.Two-Parts", "/org/example/Two_Parts",
        [&](const QDBusMessage& call) {
            QVariantMap platformData;
            call.arguments().last().value<QDBusArgument>() >> platformData;
            const QString token = platformData.value("desktop-startup-id").toString();
            calls << call.interface() + '.' + call.member() + ' ' +
                         call.arguments().first().toStringList().join(' ') + token.left(6);
            return true;
        });
    entry("org.example.Two-Parts", "Name=T\nDBusActivatable=true\nExec=/does/not/exist\n");
    EXPECT_TRUE(service->launch("org.example.Two-Parts.desktop", {}));
    EXPECT_TRUE(service->launch("org.example.Two-Parts.desktop", {"/a b", "https://c/"}));
    EXPECT_TRUE(eventually([&] { return calls.size() == 2; }));
    EXPECT_EQ(calls,
              QStringList({"org.freedesktop.Application.Activate halvex",
                           "org.freedesktop.Application.Open file:///a%20b https://c/halvex"}));
    EXPECT_THAT(log.take(), IsEmpty());

    entry("org.example.None",
          "Name=N\nDBusActivatable=true\nExec=" HALVEX_WINDOW_CLIENT " n N %c\n");
    EXPECT_TRUE(service->launch("org.example.None.desktop", {}));
    EXPECT_TRUE(becomes({"N*: N*"})) << "its command is run instead";
    EXPECT_TRUE(log.contains("cannot activate org.example.None.desktop: "));
    service->quit("N");
}

} // namespace
