#include "platform/PropertyListService.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/values/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace {

using platform::PropertyList;
using platform::propertyLists;
using testing::HasSubstr;
using Array = PropertyList::Array;

class PropertyListFilesTest : public testing::Test {
  protected:
    void SetUp() override { platform::expat::install(); }

    test::TemporaryFolder folder;
};

/// Returns a figure in KiB from /proc/self/status.
long memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return std::stol(line.substr(name.size() + 1));
    return 0;
}

TEST_F(PropertyListFilesTest, UnreadableFilesAreRejectedQuicklyWithAReason) {
    const auto sized = [&](const std::string& name, std::uintmax_t size) {
        std::filesystem::resize_file(folder.write(name, ""), size);
        return folder.file(name);
    };
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("nothing", folder.file("dangling"));
    std::string bomb = "<!DOCTYPE plist [<!ENTITY l0 \"lol\">";
    for (int i = 1; i < 30; ++i) {
        const std::string last = "&l" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY l" + std::to_string(i) + " \"" + last + last + last + last + "\">";
    }
    std::string deep = "<plist>";
    for (int i = 0; i < 100'000; ++i)
        deep += "<array>";
    const struct {
        std::string path;
        const char* reason;
        bool line;
    } cases[] = {
        {folder.file("dangling"), "No such file", false},
        {folder.path().string(), "a folder", false},
        {folder.file("pipe"), "a pipe", false},
        {"/dev/zero", "a device", false},
        {sized("sparse", 1U << 30), "larger than 536870912 bytes", false},
        {sized("zeros", 400U << 20), "not well-formed", true},
        {folder.write("empty", ""), "no element found", true},
        {folder.write("bomb", bomb + "]><plist><string>&l29;</string></plist>"), "Entity", true},
        {folder.write("deep", deep), "Nested more than 512 deep", true},
        {folder.write("noise", std::string(30 << 20, '\xFF')), "not well-formed", true},
    };
    for (const auto& [path, reason, line] : cases) {
        SCOPED_TRACE(path);
        std::ofstream("/proc/self/clear_refs") << "5"; // resets the peak
        const long before = memory("VmRSS");
        const auto start = std::chrono::steady_clock::now();
        const auto result = propertyLists().read(path);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
        EXPECT_LT(memory("VmHWM") - before, 64 << 10);
        EXPECT_FALSE(result);
        EXPECT_THAT(result.error.reason, HasSubstr(reason));
        EXPECT_EQ(result.error.line > 0, line);
        EXPECT_EQ(propertyLists().readArray(path), std::nullopt);
    }
}

TEST_F(PropertyListFilesTest, ReadsBackTheArrayThatItWroteAndRejectsOtherRoots) {
    const std::string path = folder.file("Halvex Locations");
    const Array list{Array{"Amsterdam", "", true}, Array{"São Paulo"}};
    EXPECT_TRUE(propertyLists().writeArray(path, list));
    EXPECT_FALSE(propertyLists().writeArray(path, Array{"fine", "\x01"}));
    EXPECT_EQ(propertyLists().readArray(path), list) << "a failed write leaves the file unchanged";
    EXPECT_EQ(propertyLists().readArray(folder.write("d", "<plist><dict/></plist>")), std::nullopt);
}

} // namespace
