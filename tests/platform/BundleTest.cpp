#include "platform/Bundle.h"

#include "platform/expat/ExpatPropertyLists.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

using platform::Bundle;

namespace {

std::string infoPlist(const std::string& executable) {
    return "<plist><dict><key>CFBundleExecutable</key><string>" + executable +
           "</string></dict></plist>";
}

class BundleFolder : public testing::Test {
  protected:
    void SetUp() override { platform::expat::install(); }
    test::TemporaryFolder folder;
    std::string path = folder.file("Test.menu");
};

TEST_F(BundleFolder, HasNoExecutablePathOutsideOfItsCodeFolder) {
    for (const char* name : {"", ".", "..", "../../../bin/sh", "/bin/sh", "a/b"}) {
        folder.write("Test.menu/Contents/Info.plist", infoPlist(name));
        EXPECT_EQ(Bundle::bundleWithPath(path)->executablePath(), std::nullopt) << name;
    }
}

TEST_F(BundleFolder, IsReadAgainEachTimeAndAvailableAfterItsRemoval) {
    EXPECT_EQ(Bundle::bundleWithPath(path), nullptr);
    for (const char* executable : {"One", "Two", "Six"}) {
        folder.write("Test.menu/Contents/Info.plist", infoPlist(executable));
        EXPECT_EQ(Bundle::bundleWithPath(path)->executablePath(),
                  path + "/Contents/Linux/" + executable);
    }
    std::filesystem::remove_all(path);
    for (const std::string& spelling : {path, path + "/"}) {
        const auto removed = Bundle::bundleWithPath(spelling);
        ASSERT_TRUE(removed);
        EXPECT_EQ(removed->executablePath(), path + "/Contents/Linux/Six");
        EXPECT_THAT(removed->executableArchitectures(), testing::IsEmpty());
    }
    folder.write("Test.menu/x", "");
    EXPECT_EQ(Bundle::bundleWithPath(path)->infoDictionary(), nullptr)
        << "the path is a different bundle now";
    folder.write("Test.menu/Contents/Info.plist", infoPlist("One"));
    ASSERT_TRUE(Bundle::bundleWithPath(path)->infoDictionary());
    folder.write("Test.menu/Contents/Info.plist", infoPlist(std::string(1 << 20, 'x')));
    std::string reason;
    EXPECT_EQ(Bundle::bundleWithPath(path, &reason)->infoDictionary(), nullptr);
    EXPECT_THAT(reason, testing::EndsWith("larger than 1048576 bytes."));
    std::filesystem::remove_all(path);
    EXPECT_EQ(Bundle::bundleWithPath(path)->infoDictionary(), nullptr)
        << "not the bundle that was read before the large one";
    folder.write("Test.menu", "a file");
    EXPECT_EQ(Bundle::bundleWithPath(path), nullptr);
}

TEST(BundleVersion, IsAStringOrTheTextOfANumber) {
    const std::pair<platform::PropertyList, std::optional<std::string>> cases[] = {
        {"1.0", "1.0"}, {12, "12"}, {-3, "-3"}, {1.5, "1.5"}, {true, std::nullopt}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(Bundle("/Test", platform::PropertyList::Dictionary{{"CFBundleVersion", value}})
                      .version(),
                  text);
}

TEST(LoadedBundles, AreFoundByIdentifierUntilTheirCodeIsUnloaded) {
    const auto make = [](const char* identifier) {
        return std::make_shared<Bundle>(
            "/Test", platform::PropertyList::Dictionary{{"CFBundleIdentifier", identifier}});
    };
    const auto first = make("test.one");
    const auto second = make("test.one");
    for (const auto& bundle : {first, second, make("test.two")})
        Bundle::setCodeState(bundle, Bundle::Code::Loaded);
    EXPECT_EQ(Bundle::bundleWithIdentifier(""), nullptr);
    EXPECT_EQ(Bundle::bundleWithIdentifier("test.one"), first);
    Bundle::setCodeState(first, Bundle::Code::Unloaded);
    EXPECT_EQ(Bundle::bundleWithIdentifier("test.one"), second);
    Bundle::setCodeState(second, Bundle::Code::Unloaded);
    EXPECT_EQ(Bundle::bundleWithIdentifier("test.one"), nullptr);
}

} // namespace
