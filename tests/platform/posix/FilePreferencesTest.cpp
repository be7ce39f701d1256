#include "platform/FileManager.h"
#include "platform/Preferences.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/FileLock.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryPreferences.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace platform;
using namespace testing;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

using Keys = std::vector<std::string>;

class FilePreferences : public Test {
  protected:
    FilePreferences() { expat::install(); }

    void write(const std::string& entries) const {
        std::ofstream(file) << "<plist><dict>" << entries << "</dict></plist>";
    }
    /// Runs the main loop until a change is reported. Returns empty keys if none is.
    Keys nextChange() {
        loop.runUntil([&] { return !changes.empty(); }, 2s);
        Keys keys = changes.empty() ? Keys() : changes.front();
        changes.clear();
        return keys;
    }
    bool reportsNothing() {
        return !loop.runUntil([&] { return !changes.empty(); }, 100ms);
    }

    test::RecordingLog log;
    test::PollingMainThread loop;
    test::TemporaryPreferences folder;
    const std::string file = folder.file("org.example.A");
    Preferences settings = preferences("org.example.A");
    std::vector<Keys> changes;
    std::function<void(const Keys&)> record = [this](const Keys& keys) { changes.push_back(keys); };
};

TEST_F(FilePreferences, StoreEachTypeAndRemoveKeys) {
    EXPECT_FALSE(fs::exists(file)) << "opening writes nothing";
    EXPECT_TRUE(settings.write(PreferenceChanges()
                                   .set("Boolean", true)
                                   .set("Integer", -5)
                                   .set("Real", 2.5)
                                   .set("String", "text")
                                   .set("Strings", {"a", "b"})
                                   .set("Data", PropertyList::Data{{1, 2}})));
    const std::unique_ptr<PreferencesService> other =
        makeFilePreferences(fs::path(file).parent_path());
    const Preferences read(other->domain("org.example.A"));
    EXPECT_TRUE(read.boolean("Boolean"));
    EXPECT_EQ(read.integer("Integer"), -5);
    EXPECT_EQ(read.real("Real"), 2.5);
    EXPECT_EQ(read.real("Integer"), -5.0);
    EXPECT_EQ(read.string("String"), "text");
    EXPECT_THAT(read.strings("Strings"), ElementsAre("a", "b"));
    EXPECT_THAT(read.data("Data").bytes, ElementsAre(1, 2));
    EXPECT_EQ(read.value("Data"), PropertyList(PropertyList::Data{{1, 2}}));
    EXPECT_TRUE(settings.remove("String"));
    EXPECT_EQ(read.string("String", "fallback"), "fallback");
    EXPECT_EQ(read.value("String"), std::nullopt);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(FilePreferences, UseTheFallbackForWrongTypesAndLogEachOnce) {
    for (const char* key : {"Boolean", "Integer", "Real", "String", "Strings", "Data"})
        EXPECT_TRUE(settings.set(key, PropertyList::Array{"a", 1}));
    for (const bool isFirst : {true, false}) {
        EXPECT_TRUE(settings.boolean("Boolean", true));
        EXPECT_EQ(settings.integer("Integer", 7), 7);
        EXPECT_EQ(settings.real("Real", 7.5), 7.5);
        EXPECT_EQ(settings.string("String", "x"), "x");
        EXPECT_THAT(settings.strings("Strings", {"x"}), ElementsAre("x"));
        EXPECT_THAT(settings.data("Data", {{7}}).bytes, ElementsAre(7));
        EXPECT_EQ(
            log.contains("cannot use preference Boolean in " + file + ": it is not a boolean"),
            isFirst);
        EXPECT_THAT(log.take(), SizeIs(isFirst ? 6 : 0));
    }
    settings.set("String", "now valid");
    EXPECT_EQ(settings.string("String"), "now valid");
    settings.set("String", 1);
    EXPECT_EQ(settings.string("String", "x"), "x");
    EXPECT_TRUE(log.contains("cannot use preference String")) << "logged again after a repair";
}

TEST_F(FilePreferences, KeepABrokenFileAsideWhenTheyAreWritten) {
    const std::string kept = file + ".unreadable";
    const std::string target = file + ".target";
    fs::create_symlink(target, file);
    for (const std::string broken :
         {"<plist><dict><key>a", "<plist><array/></plist>", "nonsense"}) {
        std::ofstream(target) << broken;
        log.take();
        EXPECT_EQ(settings.integer("A", 3), 3);
        EXPECT_EQ(settings.integer("A", 3), 3);
        EXPECT_THAT(log.take(), ElementsAre(HasSubstr("cannot read preferences from " + file)));
        EXPECT_TRUE(settings.set("A", 4));
        EXPECT_TRUE(log.contains("kept the unreadable preferences as " + target + ".unreadable"));
        EXPECT_EQ(test::contents(target + ".unreadable"), broken);
        EXPECT_EQ(settings.integer("A"), 4);
    }
    EXPECT_FALSE(fs::exists(kept));
    EXPECT_TRUE(fs::is_symlink(file));
}

TEST_F(FilePreferences, FailToWriteWhatIsUnsafeAndChangeNothing) {
    settings.set("A", "old");
    const std::string old = test::contents(file);
    EXPECT_FALSE(settings.write(PreferenceChanges().set("B", 1).set("A", "\xFF")));
    EXPECT_TRUE(log.contains("cannot write preferences to " + file));
    EXPECT_FALSE(settings.set("B", std::string(9 << 20, 'x')));
    {
        const posix::FileLock lock(file + ".lock");
        EXPECT_FALSE(settings.set("A", "new"));
        EXPECT_TRUE(log.contains("another program has locked the file"));
    }
    EXPECT_EQ(test::contents(file), old);
    fs::resize_file(file, 9 << 20);
    EXPECT_FALSE(settings.set("A", "new")) << "the file is too large to be read";
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_FALSE(settings.set("A", "new"));
}

TEST_F(FilePreferences, KeepTheModeAndWriteOnlyIfAValueChanges) {
    settings.set("A", 1);
    ASSERT_EQ(chmod(file.c_str(), 0640), 0);
    settings.set("A", 2);
    struct stat before {};
    ASSERT_EQ(stat(file.c_str(), &before), 0);
    EXPECT_EQ(before.st_mode & 0777U, 0640U);
    for (const auto& unchanged :
         {PreferenceChanges().set("A", 2), PreferenceChanges().remove("B")}) {
        EXPECT_TRUE(settings.write(unchanged));
        struct stat after {}; // after each write: a second one could reuse the first file's number
        ASSERT_EQ(stat(file.c_str(), &after), 0);
        EXPECT_EQ(after.st_ino, before.st_ino);
    }
}

TEST_F(FilePreferences, OfTwoProcessesThatWriteDifferentKeysLoseNothing) {
    constexpr int kKeys = 200;
    std::array<pid_t, 2> writers{};
    for (std::size_t i = 0; i < writers.size(); ++i) {
        writers[i] = fork();
        if (writers[i] != 0)
            continue;
        bool written = true;
        for (int key = 0; key < kKeys; ++key)
            written &= settings.set(std::to_string(i) + '-' + std::to_string(key), key);
        _exit(written ? 0 : 1);
    }
    for (const pid_t writer : writers) {
        int status = -1;
        waitpid(writer, &status, 0);
        EXPECT_EQ(status, 0) << "a write failed";
    }
    EXPECT_EQ(settings.values().size(), 2U * kKeys);
}

TEST_F(FilePreferences, ReportEachChangeOfAValueOnce) {
    settings.set("A", 1);
    auto watch = settings.onChange(record);
    ASSERT_TRUE(watch);
    settings.write(PreferenceChanges().set("B", 1).set("A", 2));
    EXPECT_THAT(nextChange(), ElementsAre("A", "B")) << "an own change";
    EXPECT_TRUE(reportsNothing());
    settings.set("A", 2);
    write("<key>B</key><integer>1</integer><key>A</key><integer>2</integer>");
    EXPECT_TRUE(reportsNothing()) << "the values are the same";
    changes.clear();

    fs::remove(file);
    EXPECT_THAT(nextChange(), ElementsAre("A", "B"));
    std::ofstream(file + ".new") << "<plist><dict><key>C</key><true/></dict></plist>";
    fs::rename(file + ".new", file);
    EXPECT_THAT(nextChange(), ElementsAre("C"));
    EXPECT_TRUE(settings.boolean("C"));

    watch.reset();
    settings.set("A", 3);
    EXPECT_TRUE(reportsNothing());
}

TEST_F(FilePreferences, ReportAChangeBetweenReadingAndWatching) {
    EXPECT_EQ(settings.integer("A", 1), 1);
    write("<key>A</key><integer>2</integer>");
    const auto watch = settings.onChange(record);
    EXPECT_THAT(nextChange(), ElementsAre("A"));
}

TEST_F(FilePreferences, WithAPrefixSeeOnlyTheirOwnKeys) {
    const auto domain = preferencesService().domain("org.example.A");
    const Preferences clock(domain, "Clock");
    settings.set("Other", 1);
    std::unique_ptr<Watch> watch;
    watch = clock.onChange([&](const Keys& keys) {
        changes.push_back(keys);
        watch.reset(); // a handler may do that
    });
    settings.set("Other", 2);
    EXPECT_TRUE(reportsNothing());
    clock.set("Format", "%H");
    EXPECT_THAT(nextChange(), ElementsAre("Format"));
    EXPECT_EQ(settings.string("ClockFormat"), "%H");
    EXPECT_EQ(clock.values(), (PropertyList::Dictionary{{"Format", "%H"}}));
    EXPECT_TRUE(clock.remove("Format"));
    EXPECT_EQ(settings.values(), (PropertyList::Dictionary{{"Other", 2}}));
    EXPECT_TRUE(reportsNothing());
}

TEST_F(FilePreferences, WakeTheProcessOnlyWhileTheyAreWatched) {
    const auto descriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = descriptors();
    settings.set("A", 1);
    EXPECT_EQ(settings.integer("A"), 1);
    EXPECT_EQ(descriptors(), before);
    {
        const auto one = settings.onChange(record);
        const auto two = preferences("org.example.A").onChange(record);
        EXPECT_EQ(descriptors(), before + 1) << "shared by all handlers";
    }
    EXPECT_EQ(descriptors(), before);
}

TEST_F(FilePreferences, AreRefusedForIdentifiersThatAreNoFileNames) {
    for (const std::string& name :
         {std::string(), std::string("."), std::string("../x"), std::string("a/b"),
          std::string(".hidden"), std::string("a\nb"), std::string("a\0b", 3), std::string("\xFF"),
          std::string(201, 'x')}) {
        const Preferences none = preferences(name);
        EXPECT_TRUE(log.contains("cannot open preferences ")) << name;
        log.take();
        EXPECT_EQ(none.integer("A", 5), 5);
        EXPECT_FALSE(none.set("A", 1));
        EXPECT_EQ(none.onChange(record), nullptr);
        EXPECT_EQ(none.file(), "");
    }
}

TEST(DefaultPreferences, AreInTheLibraryOfTheUser) {
    const test::TemporaryFolder home;
    const test::ScopedEnvironment variable{"HOME", home.path().string()};
    expat::install();
    const Preferences settings = preferences("org.example.B");
    EXPECT_TRUE(settings.set("A", 1)) << "creates the folder";
    EXPECT_EQ(settings.file(), home.file("Library/Preferences/org.example.B.plist"));
    EXPECT_TRUE(fs::exists(settings.file()));
}

} // namespace
