#include "platform/widgets/MenuExtraPlugIn.h"
#include "tests/desktop/support/TestBundle.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace test;

namespace {

void makeWritableByOthers(const fs::path& path) {
    fs::permissions(path, fs::perms::others_write, fs::perm_options::add);
}

/// The log names a bundle by its identifier if its code was loaded, else by its path.
TEST(BrokenBundle, IsNotLoadedAndIsNamedInTheLog) {
    BarProcess bar({HALVEX_TIME_MENU});
    const auto before = bar.identifiers();
    const auto isNamed = [&](const TestBundle& bundle, const std::string& line, bool identified) {
        bar.add(bundle.path);
        EXPECT_TRUE(bar.logs(line)) << line << " in " << bar.log();
        EXPECT_TRUE(bar.logs(identified ? kTestExtra : bundle.path.string())) << line;
        EXPECT_EQ(bar.identifiers(), before) << line;
    };
    using Damage = void (*)(const TestBundle&);
    const std::pair<Damage, std::string> refused[] = {
        {[](auto& b) { fs::remove(b.info()); }, "Info.plist"},
        {[](auto& b) { replaceContents(b.info(), contents(b.info()).substr(0, 300)); }, "line "},
        {[](auto& b) { b.replaceInInfo("NSPrincipalClass", "Other"); }, "no NSPrincipalClass"},
        {[](auto& b) { b.replaceInInfo("test.extra", std::string(256, 'x')); },
         "CFBundleIdentifier in Info.plist is longer than 255"},
        {[](auto& b) { b.replaceInInfo("</integer>", "9</integer>"); },
         "it is built for ABI " + std::to_string(platform::kMenuExtraABI) + "9"},
        {[](auto& b) { fs::remove(b.code()); }, "is missing"},
        {[](auto& b) { replaceContents(b.code(), contents(b.code()).replace(18, 2, "\x15\0", 2)); },
         "another processor (16777234)"},
        {[](auto& b) { replaceContents(b.code(), std::string(5000, 'x')); }, "no executable code"},
        {[](auto& b) { makeWritableByOthers(b.code()); }, "TestExtra is writable by other users"},
        {[](auto& b) { makeWritableByOthers(b.path); }, "TestExtra.menu is writable"},
        {[](auto& b) {
             fs::rename(b.info(), b.path / "Info.plist");
             fs::create_symlink("../Info.plist", b.info());
         },
         "Info.plist is a symbolic link"},
        {[](auto& b) { fs::resize_file(b.code(), fs::file_size(b.code()) / 2); }, "truncated code"},
        {[](auto& b) { makeWritableByOthers(b.path.parent_path()); }, "Menu Extras is writable"},
    };
    for (const auto& [damage, line] : refused) {
        const TestBundle bundle(bar);
        damage(bundle);
        isNamed(bundle, line, false);
    }
    fs::permissions(TestBundle(bar).path.parent_path(), fs::perms(0755));
    const TestBundle other(bar);
    fs::copy_file(HALVEX_NO_ENTRY_POINT, other.code(), fs::copy_options::overwrite_existing);
    isNamed(other, std::string("no entry point ") + platform::kMenuExtraEntryPoint, true);
    isNamed(TestBundle(bar, "Unknown"), "no class Unknown", true);
    isNamed(TestBundle(bar, "ReturnsNull"), "initWithBundle returned null", true);
    isNamed(TestBundle(bar, "HasNoView"), "it has no view", true);
    isNamed(TestBundle(bar, "ThrowsAtStart"),
            "test.extra raised an exception: std::exception   reason: no AtStart", true);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(BrokenBundle, ThatThrowsLaterIsLoggedEachTimeAndTheBarKeepsRunning) {
    BarProcess bar;
    for (const std::string when : {"WhenClicked", "WhenTicking", "WhenDrawn"}) {
        const TestBundle bundle(bar, "Throws" + when);
        EXPECT_TRUE(bar.loads(bundle.path, kTestExtra));
        EXPECT_FALSE(bar.click(kTestExtra));
        EXPECT_TRUE(bar.logs("reason: no " + when)) << when;
        EXPECT_EQ(bar.remove(kTestExtra), 0);
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
