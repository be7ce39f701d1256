#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/WindowProcess.h"

#include <gtest/gtest.h>

using test::BarProcess;

namespace {

constexpr const char* kOwn = "own.pane";

class PreferencesProcess : public testing::Test {
  protected:
    void install(const std::string& file, const std::string& identifier) const {
        preferences.folder.write(
            "Library/PreferencePanes/" + file + "/Contents/Info.plist",
            "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" + identifier +
                "</string></dict></plist>");
    }
    bool shows(const std::function<bool(const QImage&)>& predicate) {
        return BarProcess::eventually([&] {
            const QImage picture = preferences.picture();
            return !picture.isNull() && predicate(picture);
        });
    }

    test::WindowProcess preferences{HALVEX_PREFERENCES, "com.quorvanesoftware.Preferences"};
};

TEST_F(PreferencesProcess, ShowsThePaneThatALaterStartRequests) {
    install("Own.prefPane", kOwn);
    preferences.start({HALVEX_PANE});
    ASSERT_TRUE(BarProcess::eventually([this] { return !preferences.picture().isNull(); }));
    const QImage productsPane = preferences.picture();
    EXPECT_EQ(preferences.startAgain({HALVEX_PANE}), 0);
    EXPECT_EQ(preferences.startAgain(), 0);
    EXPECT_FALSE(preferences.picture().isNull());

    EXPECT_EQ(preferences.startAgain({"--select", kOwn}), 0);
    const QImage own = preferences.picture();
    EXPECT_FALSE(own.isNull());
    EXPECT_NE(own, productsPane);
    EXPECT_EQ(preferences.startAgain({"--select", "missing.pane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane missing.pane cannot be shown: "));
    EXPECT_EQ(preferences.startAgain({"/nowhere/A B.prefPane"}), 0);
    EXPECT_TRUE(preferences.logs("preference pane /nowhere/A B.prefPane cannot be shown: "));
    EXPECT_EQ(preferences.startAgain({"--select", kOwn}), 0);
    EXPECT_EQ(preferences.picture(), own);
    EXPECT_EQ(preferences.stop(), 0) << preferences.log();
}

TEST_F(PreferencesProcess, ShowsThePaneThatHalvexctlOpensOrSelects) {
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

TEST_F(PreferencesProcess, RejectsWrongArgumentsAndUnknownRequests) {
    for (const QStringList& arguments : std::initializer_list<QStringList>{
             {"one", "two"}, {"--select"}, {"--select", "x", "y"}, {"--appearance", "red"}})
        EXPECT_EQ(preferences.startAgain(arguments), 2) << arguments.join(' ').toStdString();
    preferences.start();
    const auto request = [this](const QString& member, const QVariantList& arguments) {
        return preferences.ask(member, arguments).errorMessage().toStdString();
    };
    EXPECT_EQ(request("ActivateAction", {"dance", QVariantList()}),
              "unknown action \"dance\": use \"select\"");
    EXPECT_EQ(request("ActivateAction", {"select", QVariantList()}),
              "the action \"select\" needs one parameter, the identifier of a pane");
    EXPECT_EQ(request("Open", {QStringList("http://a/b.prefPane")}),
              "cannot open \"http://a/b.prefPane\": not a file URL");
}

} // namespace
