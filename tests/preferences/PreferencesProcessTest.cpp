#include "tests/desktop/support/WindowProcess.h"

#include <gtest/gtest.h>

using test::WindowProcess;

namespace {

constexpr const char* kInfo = "Library/PreferencePanes/Own.prefPane/Contents/Info.plist";

class PreferencesProcess : public testing::Test {
  protected:
    WindowProcess preferences{HALVEX_PREFERENCES, "com.quorvanesoftware.Preferences"};
};

TEST_F(PreferencesProcess, ShowsThePaneAndTakesOverWhatALaterStartAsksFor) {
    preferences.folder.write(kInfo, "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key>"
                                    "<string>own.pane</string></dict></plist>");
    preferences.start({HALVEX_PANE});
    ASSERT_TRUE(test::BarProcess::eventually([this] { return !preferences.picture().isNull(); }));
    const QImage products = preferences.picture();
    EXPECT_EQ(preferences.startAgain({HALVEX_PANE}), 0);
    EXPECT_EQ(preferences.startAgain(), 0);
    EXPECT_FALSE(preferences.picture().isNull());

    EXPECT_EQ(preferences.startAgain({"--select", "own.pane"}), 0);
    const QImage own = preferences.picture();
    EXPECT_FALSE(own.isNull());
    EXPECT_NE(own, products);
    EXPECT_EQ(preferences.startAgain({"--select", "nobodys.pane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane nobodys.pane cannot be shown: "));
    EXPECT_EQ(preferences.startAgain({"/nowhere/A B.prefPane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane /nowhere/A B.prefPane cannot be shown: "));
    EXPECT_EQ(preferences.startAgain({"--select", "own.pane"}), 0);
    EXPECT_EQ(preferences.picture(), own);
    EXPECT_EQ(preferences.stop(), 0) << preferences.log();
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
              "\"http://a/b.prefPane\" is no file");
}

} // namespace
