#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/ProgramProcess.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* kOwn = "own.pane";

class PreferencesProcess : public testing::Test {
  protected:
    void install(const std::string& file, const std::string& identifier) const {
        const auto contents = preferences.home() / "Library/PreferencePanes" / file / "Contents";
        std::filesystem::create_directories(contents);
        std::ofstream(contents / "Info.plist")
            << "<plist><dict><key>CFBundleIdentifier</key><string>" << identifier
            << "</string></dict></plist>";
    }

    test::ProgramProcess preferences{HALVEX_PREFERENCES, "com.quorvanesoftware.Preferences"};
};

TEST_F(PreferencesProcess, ShowsThePaneThatALaterStartRequests) {
    install("Own.prefPane", kOwn);
    preferences.start({HALVEX_PANE});
    ASSERT_TRUE(test::eventually([this] { return !preferences.picture().isNull(); }));
    const QImage productsPane = preferences.picture();
    EXPECT_EQ(preferences.run({HALVEX_PANE}), 0);
    EXPECT_EQ(preferences.run(), 0);
    EXPECT_FALSE(preferences.picture().isNull());

    EXPECT_EQ(preferences.run({"--select", kOwn}), 0);
    const QImage own = preferences.picture();
    EXPECT_FALSE(own.isNull());
    EXPECT_NE(own, productsPane);
    EXPECT_EQ(preferences.run({"--select", "missing.pane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane missing.pane cannot be shown: "));
    EXPECT_EQ(preferences.run({"/nowhere/A B.prefPane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane /nowhere/A B.prefPane cannot be shown: "));
    EXPECT_EQ(preferences.run({"--select", kOwn}), 0);
    EXPECT_EQ(preferences.picture(), own);
    EXPECT_EQ(preferences.stop(), 0) << preferences.log();
}

TEST_F(PreferencesProcess, ShowsThePaneThatHalvexctlOpensOrSelects) {
    install("Own.prefPane", kOwn);
    install("Halvex Pro.prefPane", HalvexPrefsBundleID);
    preferences.start({"--select", kOwn});
    QImage own, picture;
    ASSERT_TRUE(test::eventually([&] { return !(own = preferences.picture()).isNull(); }));
    EXPECT_EQ(preferences.run({"prefs", "open"}, HALVEX_CTL), 0);
    EXPECT_TRUE(test::eventually([&] { return (picture = preferences.picture()) != own; }));
    EXPECT_FALSE(picture.isNull());
    EXPECT_EQ(preferences.run({"prefs", "select", kOwn}, HALVEX_CTL), 0);
    EXPECT_TRUE(test::eventually([&] { return preferences.picture() == own; }));
    EXPECT_TRUE(preferences.isRunning());
}

TEST_F(PreferencesProcess, RejectsWrongArgumentsAndUnknownRequests) {
    for (const QStringList& arguments : std::initializer_list<QStringList>{
             {"one", "two"}, {"--select"}, {"--select", "x", "y"}, {"--appearance", "red"}})
        EXPECT_EQ(preferences.run(arguments), 2) << arguments.join(' ').toStdString();
    preferences.start();
    EXPECT_EQ(preferences.request("ActivateAction", {"dance", QVariantList()}),
              "unknown action \"dance\": use \"select\"");
    EXPECT_EQ(preferences.request("ActivateAction", {"select", QVariantList()}),
              "the action \"select\" needs one parameter, the identifier of a pane");
    EXPECT_EQ(preferences.request("Open", {QStringList("http://a/b.prefPane")}),
              "cannot open \"http://a/b.prefPane\": not a file URL");
}

} // namespace
