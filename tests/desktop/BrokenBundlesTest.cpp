#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/SpoiltBundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using test::BarProcess;
using test::contents;
using test::replaceContents;
using test::SpoiltBundle;

namespace {

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
        const SpoiltBundle bundle(bar);
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
        const SpoiltBundle bundle(bar);
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
