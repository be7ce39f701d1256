#include "tests/desktop/support/BarProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using test::BarProcess;

namespace {

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void replaceContents(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

/// A copy of the test bundle that a test may spoil.
class SpoiltBundle {
  public:
    explicit SpoiltBundle(const test::TemporaryFolder& folder)
        : path(folder.path() / "Spoilt.menu") {
        fs::remove_all(path);
        fs::copy(HALVEX_TEST_EXTRA, path, fs::copy_options::recursive);
    }
    void replaceInInfo(const std::string& what, const std::string& with) const {
        std::string text = contents(info());
        const auto place = text.find(what);
        ASSERT_NE(place, std::string::npos) << what;
        replaceContents(info(), text.replace(place, what.size(), with));
    }
    void useClass(const std::string& name) const { replaceInInfo("Calm", name); }
    fs::path info() const { return path / "Contents/Info.plist"; }
    fs::path code() const { return path / "Contents/Linux/TestExtra"; }

    fs::path path;
};

struct Fault {
    const char* name;
    void (*spoil)(const SpoiltBundle&);
    const char* logged;
    bool identified = true; ///< the line names the identifier, else the path
};

constexpr auto kOthersMayWrite = fs::perms::others_write;

const Fault kFaults[] = {
    {"without Info.plist", [](const SpoiltBundle& b) { fs::remove(b.info()); }, "Info.plist",
     false},
    {"with an Info.plist that breaks off",
     [](const SpoiltBundle& b) { replaceContents(b.info(), contents(b.info()).substr(0, 300)); },
     "line ", false},
    {"without a principal class",
     [](const SpoiltBundle& b) { b.replaceInInfo("NSPrincipalClass", "Other"); },
     "no NSPrincipalClass", false},
    {"of another ABI",
     [](const SpoiltBundle& b) { b.replaceInInfo("<integer>1</integer>", "<integer>2</integer>"); },
     "it is for ABI 2", false},
    {"without code", [](const SpoiltBundle& b) { fs::remove(b.code()); }, "is missing", false},
    {"with code that is cut off",
     [](const SpoiltBundle& b) { fs::resize_file(b.code(), fs::file_size(b.code()) / 2); },
     "cut off"},
    {"for another processor",
     [](const SpoiltBundle& b) {
         std::string bytes = contents(b.code());
         bytes[18] = '\x15'; // PowerPC
         bytes[19] = 0;
         replaceContents(b.code(), bytes);
     },
     "another processor (16777234)", false},
    {"with a text for code",
     [](const SpoiltBundle& b) { replaceContents(b.code(), std::string(5000, 'x')); },
     "no executable code", false},
    {"without an entry point",
     [](const SpoiltBundle& b) {
         fs::copy_file(HALVEX_NO_ENTRY_POINT, b.code(), fs::copy_options::overwrite_existing);
     },
     "no entry point HalvexMenuExtraEntry_1"},
    {"without its class", [](const SpoiltBundle& b) { b.useClass("Unknown"); }, "no class Unknown"},
    {"that others may write",
     [](const SpoiltBundle& b) {
         fs::permissions(b.code(), kOthersMayWrite, fs::perm_options::add);
     },
     "can be written by others", false},
    {"in a folder that others may write",
     [](const SpoiltBundle& b) { fs::permissions(b.path, kOthersMayWrite, fs::perm_options::add); },
     "can be written by others", false},
    {"that throws in its initialiser", [](const SpoiltBundle& b) { b.useClass("ThrowsAtStart"); },
     "test.extra raised an exception: std::exception   reason: no start"},
    {"that gives no item", [](const SpoiltBundle& b) { b.useClass("GivesNothing"); },
     "initWithBundle gave nothing"},
};

TEST(BrokenBundle, IsNamedInTheLogAndTakesNothingWithIt) {
    BarProcess bar({HALVEX_TIME_MENU});
    const auto before = bar.identifiers();
    for (const Fault& fault : kFaults) {
        const SpoiltBundle bundle(bar.folder());
        fault.spoil(bundle);
        bar.add(bundle.path.string());
        EXPECT_TRUE(bar.logs(fault.logged)) << fault.name << ": " << bar.log();
        EXPECT_TRUE(bar.logs(fault.identified ? "test.extra" : bundle.path.string())) << fault.name;
        EXPECT_EQ(bar.identifiers(), before) << fault.name;
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(BrokenBundle, ThatThrowsLaterIsLoggedEachTimeAndTheBarLivesOn) {
    BarProcess bar;
    const std::pair<const char*, const char*> cases[] = {
        {"ThrowsWhenClicked", "reason: no click"},
        {"ThrowsWhenTicking", "reason: no tick"},
        {"ThrowsWhenDrawn", "reason: no title"},
    };
    for (const auto& [className, line] : cases) {
        const SpoiltBundle bundle(bar.folder());
        bundle.useClass(className);
        EXPECT_EQ(bar.add(bundle.path.string()), 0);
        EXPECT_TRUE(BarProcess::eventually([&] { return bar.reference("test.extra") != 0; }));
        EXPECT_FALSE(bar.click("test.extra"));
        EXPECT_TRUE(bar.logs(line)) << className;
        bar.call("RemoveMenuExtra", {bar.reference("test.extra"), 0});
        EXPECT_THAT(bar.identifiers(), testing::ElementsAre("com.apple.menuextra.clock"));
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
