#include "platform/Bundle.h"
#include "platform/Clock.h"
#include "platform/Defaults.h"
#include "platform/DynamicLoader.h"
#include "platform/MenuExtraServer.h"
#include "platform/Preferences.h"
#include "platform/PropertyListService.h"
#include "platform/ScriptRunner.h"
#include "platform/SystemInfo.h"
#include "platform/TimeZones.h"
#include "platform/Timers.h"
#include "platform/TrustedFile.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/PosixTimeZones.h"
#include "platform/posix/PosixWorkspace.h"
#include "platform/runtime/DetachedThread.h"
#include "platform/runtime/Guard.h"
#include "tests/memory/Tree.h"
#include "tests/support/Fakes.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/TemporaryPreferences.h"

#include <fcntl.h>

using namespace platform;
using Services = test::Tree;

namespace {

const std::string kText = "a text that does not fit into a small string";
const std::string kTilde = "~/" + kText;
const std::string kURL = "mailto:" + kText;
const char* const kThisFile = typeid(Services).name();

std::shared_ptr<const TrustedFile> opened(const char* path) {
    return std::make_shared<TrustedFile>(path, ::open(path, O_RDONLY | O_CLOEXEC));
}

TEST_F(Services, OfFilesFailCompletelyIfMemoryRunsOut) {
    const std::string folder = tree.path("~/a folder with a long name");
    const std::string file = folder + "/file", link = folder + "/link", copy = folder + "-copy";
    const auto prepare = [&] {
        std::filesystem::remove_all(folder);
        std::filesystem::remove_all(copy);
        tree.write("~/a folder with a long name/file", "old");
        tree.write("~/a folder with a long name/and a folder/file", "old");
        std::filesystem::create_symlink(file, link);
    };
    const auto now = [&] {
        const auto shown = [](const std::string& path) {
            return std::filesystem::is_regular_file(path) ? test::contents(path)
                   : std::filesystem::exists(path)        ? "exists"
                                                          : "none";
        };
        return withLeftovers(shown(file) + ' ' + shown(copy));
    };
    const std::vector<std::string> no{"false"}, emptyPath{"\"\""}, empty{"nullopt"};
    const std::vector<std::string> unchanged{"false old none"};
    const auto reason = [&](const auto& result) { return result ? "file" : result.reason; };
    test::PollingMainThread mainThread;
    expat::install();
    const test::TemporaryPreferences temporary;
    const auto changes = PreferenceChanges().set("key", kText);
    const Preferences settings = preferences("a domain with a name that is not small");
    test::failEachAllocation(
        log,
        {
            {"exists", [&] { return files.fileExists(file, nullptr); }, no, prepare},
            {"is a folder", [&] { return files.isDirectory(folder); }, no, prepare},
            {"is a file", [&] { return files.isFile(file); }, no, prepare},
            {"is readable", [&] { return files.isReadableFile(file); }, no, prepare},
            {"is writable", [&] { return files.isWritableFile(file); }, no, prepare},
            {"is a link", [&] { return files.isSymbolicLink(link); }, no, prepare},
            {"resolve", [&] { return files.resolvingSymbolicLinks(link); }, emptyPath, prepare},
            {"contents", [&] { return files.contentsOfDirectory(folder); }, empty, prepare},
            {"subpaths", [&] { return files.subpaths(folder); }, empty, prepare},
            {"open", [&] { return reason(files.openFile(file)); }, {"\"out of memory\""}, prepare},
            {"read",
             [&] { return reason(files.readFile(file, 1000)); },
             {"\"out of memory\""},
             prepare},
            {"write", [&] { return files.writeFileAtomically(file, "new"); }, unchanged, prepare,
             now},
            {"preferences: read", [&] { return settings.string(kText); }, emptyPath, prepare},
            {"preferences: write", [&] { return settings.write(changes); }, no, prepare},
            {"preferences: open", [&] { return preferences(kText).file(); }, emptyPath},
            {"home", [&] { return files.homeDirectory(); }, emptyPath},
            {"home of a user", [&] { return files.homeDirectoryForUser("root"); }, empty},
            {"expand", [] { return expandingTildeInPath(kTilde); }, emptyPath},
            {"make a folder", [&] { return files.createDirectory(copy); }, unchanged, prepare, now},
            {"link", [&] { return files.createSymbolicLink(copy, file); }, unchanged, prepare, now},
            {"remove a file", [&] { return files.removeFile(file); }, unchanged, prepare, now},
            {"remove", [&] { return files.removeItem(file); }, unchanged, prepare, now},
            {"copy", [&] { return files.copyItem(folder, copy); }, unchanged, prepare, now},
            {"copy a file", [&] { return files.copyItem(file, copy); }, unchanged, prepare, now},
            {"move", [&] { return files.moveFile(file, copy); }, unchanged, prepare, now},
            {"watch", [&] { return files.watchFile(file, [] {}); }, {"null"}, prepare},
        });
}

TEST_F(Services, OfTheDesktopFailIfMemoryRunsOut) {
    const test::ScopedEnvironment data("XDG_DATA_HOME", tree.path("~/data"));
    const test::ScopedEnvironment path("PATH", tree.path("~/no programs"));
    posix::PosixWorkspace workspace;
    test::PollingMainThread mainThread;
    test::RecordingMenuBar bar;
    const std::string file = tree.path("~/a file with a long name");
    const std::string application = tree.path("~/An application.app");
    tree.write("~/An application.app/Contents/Info.plist", "<plist><dict/></plist>");
    const auto exists = [&] {
        const bool hasInfo = tree.exists("~/data/Trash/info/a file with a long name.trashinfo");
        return test::shown(std::filesystem::exists(file)) + ' ' + test::shown(hasInfo);
    };
    const auto makeFile = [&] {
        std::filesystem::remove_all(tree.path("~/data"));
        tree.write("~/a file with a long name", "");
    };
    const auto observer = std::make_shared<int>(0);
    const Notification notification{kText, std::nullopt, {}};
    const auto library =
        opened(dynamicLoader().fileOfAddress(reinterpret_cast<const void*>(&runGuarded)).c_str());
    const auto noLibrary = opened("/dev/null");
    std::string reason;
    const auto whyNot = [&] { return reason; };
    const std::vector<std::string> outOfMemory{"\"out of memory\""};
    test::failEachAllocation(
        log,
        {
            {"recycle",
             [&] { return workspace.recycle(file); },
             {"false true false"},
             makeFile,
             exists},
            {"open", [&] { return workspace.openFile(application); }, {"false"}},
            {"open with", [&] { return workspace.openFile(file, kText); }},
            {"open a URL", [&] { return workspace.openURL(kURL); }, {"false"}},
            {"announce", [] { announceLaunch(kText); }},
            {"processes", [] { defaults::processList().processes(); }},
            {"run a script", [] { return defaults::scriptRunner().run(kText); }, outOfMemory},
            {"time zone",
             [] { return defaults::systemInfo().systemTimeZone().name; },
             {"\"\""},
             [] { setenv("TZ", "America/Argentina/Buenos_Aires", 1); }},
            {"zone",
             [] { return posix::PosixTimeZones().zone("Asia/Tokyo").has_value(); },
             {"false"}},
            {"local zone",
             [] { return defaults::timeZones().local().offsetAt(0).secondsFromUTC; },
             {"0"}},
            {"name of the local zone", [] { return defaults::timeZones().localName(); }, {"\"\""}},
            {"names of zones", [] { return defaults::timeZones().names(); }, {"0 elements"}},
            {"watch the zone", [] { return defaults::timeZones().watchLocal([] {}); }, {"null"}},
            {"timer",
             [] { return defaults::timers().every(std::chrono::seconds(1), {}, [] {}); },
             {"null"}},
            {"local time",
             [] { return defaults::timers().atLocalTime("Europe/Paris", {}, [] {}); },
             {"null"}},
            {"tick", [] { return defaults::clock().tick(TickInterval::Minute, [] {}); }, {"null"}},
            {"architectures",
             [] { return dynamicLoader().executableArchitectures("/proc/self/exe"); },
             {"0 elements"}},
            {"file of code", [] { return dynamicLoader().fileOfAddress(kThisFile); }, {"\"\""}},
            {"preflight",
             [&] { return dynamicLoader().preflight(file, reason); },
             {"false out of memory"},
             makeFile,
             whyNot},
            {"load",
             [&] { return dynamicLoader().load(library, reason); },
             {"null out of memory"},
             {},
             whyNot},
            {"refuse to load",
             [&] { return dynamicLoader().load(noLibrary, reason); },
             {"null out of memory"},
             makeFile,
             whyNot},
            {"observe",
             [&] { workspace.notificationCenter().addObserver(observer, kText, [](auto&) {}); }},
            {"post", [&] { workspace.notificationCenter().post(notification); }},
            {"find an item", [] { return CoreMenuExtraGetMenuExtra("id", nullptr); }, {"-108"}},
            {"add an item",
             [] { return CoreMenuExtraAddMenuExtra(kText, 0, 0, 0, 0, 0); },
             {"-108"}},
            {"remove an item",
             [] { return CoreMenuExtraRemoveMenuExtra(1, 0); },
             {"-108"},
             [&] { bar.loaded = {kText}; }},
            {"log", [] { defaults::log().write(kText); }},
            {"run guarded",
             [] { return runGuarded(kText, [] { throw Exception(kText, kText); }); }},
        });
    unsetenv("TZ");
}

TEST_F(Services, OfPropertyListsAndBundlesFailIfMemoryRunsOut) {
    const std::string path = tree.path("~/A bundle with a long name");
    const std::string file = path + "/list";
    const std::string xml = "<plist><array><string>" + kText + "</string><dict><key>" + kText +
                            "</key><data>AAAA</data></dict></array></plist>";
    tree.write("~/A bundle with a long name/list", xml);
    tree.write("~/A bundle with a long name/Contents/Info.plist",
               "<plist><dict><key>CFBundleIdentifier</key><string>" + kText +
                   "</string></dict></plist>");
    tree.write("~/A bundle with a long name/Contents/Resources/a picture.png", "");
    const PropertyListService& lists = propertyLists();
    const PropertyList value = *lists.parse(xml).value;
    const auto reason = [](const PropertyListResult& result) {
        return result ? "list" : result.error.text();
    };
    const Bundle bundle(path, PropertyList::Dictionary{{"CFBundleExecutable", kText},
                                                       {"CFBundleIdentifier", kText},
                                                       {"CFBundleVersion", kText}});
    const auto loaded = std::make_shared<Bundle>(bundle);
    Bundle::setCodeState(loaded, Bundle::Code::Loaded);
    const std::vector<std::string> outOfMemory{"\"out of memory\""}, empty{"nullopt"}, null{"null"};
    test::failEachAllocation(
        log, {
                 {"parse", [&] { return reason(lists.parse(xml)); }, outOfMemory},
                 {"read", [&] { return reason(lists.read(file)); }, outOfMemory},
                 {"read an array", [&] { return lists.readArray(file); }, empty},
                 {"serialize", [&] { return lists.serialize(value); }, empty},
                 {"serialize an array", [&] { return lists.serialize(*value.array()); }, empty},
                 {"write", [&] { return lists.writeArray(file, *value.array()); }, {"false"}},
                 {"open a bundle", [&] { return Bundle::bundleWithPath(path); }, null},
                 {"find a bundle", [&] { return Bundle::bundleWithIdentifier(kText); }, null},
                 {"bundle of a class", [] { return Bundle::bundleForClass(typeid(Services)); }},
                 {"main bundle", Bundle::mainBundle},
                 {"description", [&] { return bundle.description(); }, {"\"\""}},
                 {"version", [&] { return bundle.version(); }, empty},
                 {"identifier", [&] { return bundle.bundleIdentifier(); }, empty},
                 {"executable", [&] { return bundle.executablePath(); }, empty},
                 {"architectures", [&] { return bundle.executableArchitectures(); }},
                 {"plug-ins", [&] { return bundle.builtInPlugInsPath(); }, {"\"\""}},
                 {"resource", [&] { return bundle.pathForResource("a picture", "png"); }, empty},
             });
    Bundle::setCodeState(loaded, Bundle::Code::Unloaded);
}

} // namespace
