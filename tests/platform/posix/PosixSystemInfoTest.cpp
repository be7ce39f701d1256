#include "platform/posix/PosixSystemInfo.h"

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/utsname.h>

using namespace platform::posix;
using platform::SystemFact;

namespace {

TEST(PosixSystemInfo, EncodesTheVersionOfTheKernel) {
    const std::pair<std::string, std::optional<std::uint32_t>> cases[] = {
        {"6.1.0-18-amd64", 0x0610},    {"5.15.148", 0x05FF}, {"10.4.5", 0x1045},
        {"6.9-rc1", 0x0690},           {"6.12.9", 0x06C9},   {"7", 0x0700},
        {"123.4.99999999999", 0x994F}, {"6..3", 0x0600},     {"6.x.3", 0x0600},
        {"99999999999.1", 0x9910},     {"", std::nullopt},   {"rc6.1", std::nullopt},
    };
    for (const auto& [release, version] : cases)
        EXPECT_EQ(encodedVersion(release), version) << release;

    utsname system{};
    ASSERT_EQ(uname(&system), 0);
    const PosixSystemInfo info;
    EXPECT_EQ(info.query(SystemFact::SystemVersion), encodedVersion(system.release));
    EXPECT_EQ(info.query(SystemFact::MediaVersion), std::nullopt);
}

TEST(PosixSystemInfo, NamesTheTimeZoneAfterTheTargetOfItsLink) {
    const test::ScopedEnvironment zone("TZ", std::nullopt);
    const test::TemporaryFolder folder;
    const auto link = folder.file("localtime");
    std::filesystem::create_symlink("../usr/share/zoneinfo/America/New_York", link);
    EXPECT_EQ(PosixSystemInfo(link).systemTimeZone().name, "America/New_York");
    const auto unnamed = PosixSystemInfo(folder.write("copied", "TZif")).systemTimeZone();
    EXPECT_EQ(unnamed.name, unnamed.abbreviation);
}

} // namespace
