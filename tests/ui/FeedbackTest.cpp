#include "ui/ovxFeedback.h"

#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ovxFeedback;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr const char* kVersionKey = "CFBundleShortVersionString";

std::shared_ptr<platform::Bundle> bundleOfVersion(const platform::PropertyList& version) {
    return std::make_shared<platform::Bundle>(
        "/Some.prefPane", platform::PropertyList::Dictionary{{kVersionKey, version}});
}

class Feedback : public testing::Test {
  protected:
    void SetUp() override {
        system.version = 0x1048;
        system.media = 0x07168000;
        system.zone = {"Europe/Paris", "CET", 3600};
    }
    /// The one address that was opened; empty when none was.
    std::string sent(const std::string& product = "Halvex") {
        workspace.urls.clear();
        ovxSendFeedBackViaMail(bundleOfVersion("3.1"), product);
        return workspace.urls.empty() ? "" : workspace.urls.front();
    }

    test::RecordingLog log;
    test::RecordingWorkspace workspace;
    test::FixedSystemInfo system;
};

TEST_F(Feedback, TellsWhatSupportNeeds) {
    EXPECT_EQ(sent(),
              "mailto:" HALVEX_SUPPORT_ADDRESS "?Subject=Halvex%203.1%20Feedback"
              "&body=I%20am%20using%20MacOS%20X%2010.4.8%20(PPC)%20with%20Halvex%203.1.%0d%0d"
              "My%20Local%20Time%20Zone%3A%20Europe/Paris%20[CET,%20GMT%3A%201.00]%0d"
              "QuickTime%20Version%3A%207.1.6%0d%0dFeedback%20/%20Bug%20Report%3A%0d%0d");
    EXPECT_THAT(log.take(), ElementsAre());
}

TEST_F(Feedback, WritesVersionsAsTheyAreCodedAndTheOffsetInHours) {
    using Version = std::optional<std::uint32_t>;
    const std::tuple<Version, const char*, Version, const char*, std::int32_t, const char*>
        cases[] = {{0x1039, "10.3.9", 0x07608000, "7.6.0", 0, "0.00"},
                   {0x1104, "11.0.4", 0xFFA2FFFF, "ff.10.2", -18000, "-5.00"},
                   {0xABCD05FF, "5.15.15", std::nullopt, "0.0.0", 19800, "5.50"},
                   {std::nullopt, "0.0.0", 0x07168000, "7.1.6", 20700, "5.75"}};
    for (const auto& [version, asText, media, mediaAsText, seconds, hours] : cases) {
        system.version = version;
        system.media = media;
        system.zone.secondsFromGMT = seconds;
        const std::string address = sent();
        EXPECT_THAT(address, HasSubstr(std::string("X%20") + asText + "%20(PPC)"));
        EXPECT_THAT(address, HasSubstr(std::string("Version%3A%20") + mediaAsText + "%0d"));
        EXPECT_THAT(address, HasSubstr(std::string("GMT%3A%20") + hours + "]"));
    }
}

TEST_F(Feedback, OpensNothingThatIsNoURL) {
    for (const char* product : {"Halvex\"", "<Halvex>", "Halvex\\", "Halvex\t", "Halv\xC3\xA9x",
                                "100%", "%4", "%G0", "%0G", "Hal|vex", "Hal^vex", "Hal`vex"}) {
        EXPECT_EQ(sent(product), "");
        EXPECT_THAT(log.take(), ElementsAre(StartsWith(
                                    "Bad feedback URL: mailto:" HALVEX_SUPPORT_ADDRESS "?Subject=" +
                                    std::string(product) + "%203.1%20Feedback&body=I")));
    }
    const std::string marks = "azAZ09-._~/?#[]@!$&'()*+,;=%aF";
    EXPECT_THAT(sent(marks), HasSubstr("=" + marks + "%203.1%20"));
    system.zone.name = "a b:c\nd";
    EXPECT_THAT(sent(), HasSubstr("%20a%20b%3Ac%0dd%20[CET,"));
}

TEST_F(Feedback, SaysSoWhenThereIsNoVersion) {
    const std::shared_ptr<platform::Bundle> withoutVersion[] = {
        nullptr, std::make_shared<platform::Bundle>("/x", std::nullopt), bundleOfVersion(3)};
    for (const auto& bundle : withoutVersion)
        ovxSendFeedBackViaMail(bundle, "Halvex");
    EXPECT_THAT(workspace.urls,
                testing::AllOf(testing::SizeIs(3),
                               testing::Each(HasSubstr("=Halvex%20(null)%20Feedback&")),
                               testing::Each(HasSubstr("with%20Halvex%20(null).%0d%0d"))));
}

} // namespace
