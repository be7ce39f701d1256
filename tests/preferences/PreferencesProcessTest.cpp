#include "menuextras/ExportedIdentifiers.h"
#include "tests/desktop/support/WindowProcess.h"

#include <gtest/gtest.h>

using test::BarProcess;
using test::WindowProcess;

namespace {

constexpr const char* kOwn = "own.pane";

class PreferencesProcess : public testing::Test {
  protected:
    /// A pane for this user.
    void install(const std::string& file, const std::string& identifier) const {
        preferences.folder.write(
            "Library/PreferencePanes/" + file + "/Contents/Info.plist",
            "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" + identifier +
                "</string></dict></plist>");
    }
    bool shows(const std::function<bool(const QImage&)>& isRight) {
        return BarProcess::eventually([&] {
            const QImage picture = preferences.picture();
            return !picture.isNull() && isRight(picture);
        });
    }

    WindowProcess preferences{HALVEX_PREFERENCES, "com.quorvanesoftware.Preferences"};
};

TEST_F(PreferencesProcess, ShowsThePaneAndTakesOverWhatALaterStartAsksFor) {
    install("Own.prefPane", kOwn);
    preferences.start({HALVEX_PANE});
    ASSERT_TRUE(BarProcess::eventually([this] { return !preferences.picture().isNull(); }));
    const QImage products = preferences.picture();
    EXPECT_EQ(preferences.startAgain({HALVEX_PANE}), 0);
    EXPECT_EQ(preferences.startAgain(), 0);
    EXPECT_FALSE(preferences.picture().isNull());

    EXPECT_EQ(preferences.startAgain({"--select", kOwn}), 0);
    const QImage own = preferences.picture();
    EXPECT_FALSE(own.isNull());
    EXPECT_NE(own, products);
    EXPECT_EQ(preferences.startAgain({"--select", "nobodys.pane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane nobodys.pane cannot be shown: "));
    EXPECT_EQ(preferences.startAgain({"/nowhere/A B.prefPane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane /nowhere/A B.prefPane cannot be shown: "));
    EXPECT_EQ(preferences.startAgain({"--select", kOwn}), 0);
    EXPECT_EQ(preferences.picture(), own);
    EXPECT_EQ(preferences.stop(), 0) << preferences.log();
}

TEST_F(PreferencesProcess, ShowsWhatOtherProgramsOpenWithItOrSelectByAScript) {
    install("Own.prefPane", kOwn);
    install("Halvex Pro.prefPane", HalvexPrefsBundleID);
    preferences.start({"--select", kOwn});
    QImage own;
    ASSERT_TRUE(shows([&](const QImage& picture) { return !(own = picture).isNull(); }));
    EXPECT_EQ(preferences.startBeside(HALVEX_CTL, {"prefs", "open"}), 0);
    EXPECT_TRUE(shows([&](const QImage& picture) { return picture != own; }));
    EXPECT_EQ(preferences.startBeside(HALVEX_CTL, {"prefs", "select", kOwn}), 0);
    EXPECT_TRUE(shows([&](const QImage& picture) { return picture == own; }));
    EXPECT_TRUE(preferences.isRunning());
}

TEST_F(PreferencesProcess, RefusesWhatItCannotUnderstand) {
    for (const QStringList& arguments : std::initializer_list<QStringList>{
             {"one", "two"}, {"--select"}, {"--select", "x", "y"}, {"--appearance", "red"}})
        EXPECT_EQ(preferences.startAgain(arguments), 2) << arguments.join(' ').toStdString();
    preferences.start();
    const auto request = [this](const QString& member, const QVariantList& arguments) {
        return preferences.ask(member, arguments).errorMessage().toStdString();
    };
    EXPECT_EQ(request("ActivateAction", {"dance", QVariantList()}), "there is no action \"dance\"");
    EXPECT_EQ(request("ActivateAction", {"select", QVariantList()}),
              "the action \"select\" takes an identifier");
    EXPECT_EQ(request("Open", {QStringList("http://a/b.prefPane")}),
              "\"http://a/b.prefPane\" is not a file URL");
}

} // namespace
