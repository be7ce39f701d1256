#include "platform/DynamicLoader.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

class Preflight : public testing::Test {
  protected:
    std::string changed(const char* name, std::streamoff at, std::string_view bytes) const {
        fs::copy_file(HALVEX_PREFLIGHT_GOOD, folder.file(name));
        std::fstream file(folder.file(name), std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(at);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return folder.file(name);
    }
    std::string cut(const char* name, std::uintmax_t size) const {
        fs::copy_file(HALVEX_PREFLIGHT_GOOD, folder.file(name));
        fs::resize_file(folder.file(name), size);
        return folder.file(name);
    }

    test::TemporaryFolder folder;
};

TEST_F(Preflight, SaysWhyTheLoaderWouldNotLoadAFile) {
    const auto size = fs::file_size(HALVEX_PREFLIGHT_GOOD);
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    const std::string noFile = ": cannot open shared object file: No such file or directory";
    const std::string text = folder.write("text", std::string(5000, 't'));
    const struct {
        std::string path;
        std::string reason; ///< empty: it passes
    } cases[] = {
        {HALVEX_SHARED_OBJECT, ""},
        {HALVEX_PREFLIGHT_GOOD, ""},
        {HALVEX_PREFLIGHT_UNDEFINED,
         std::string("undefined symbol: nobodyDefinesThis (") + HALVEX_PREFLIGHT_UNDEFINED + ")"},
        {HALVEX_PREFLIGHT_ORPHAN, "libhalvex_preflight_gone.so => not found"},
        {folder.file("none"), folder.file("none") + noFile},
        {text, text + ": invalid ELF header"},
        {cut("start", 20), folder.file("start") + ": file too short"},
        {cut("half", size / 2), "the code is cut off in " + folder.file("half")},
        {changed("other", 18, std::string("\xb7\x00", 2)), folder.file("other") + noFile},
        {folder.file("pipe"), "no executable code in " + folder.file("pipe")},
        {folder.path().string(), "no executable code in " + folder.path().string()},
    };
    for (const auto& [path, expected] : cases) {
        std::string reason = "left from before";
        EXPECT_EQ(platform::dynamicLoader().preflight(path, reason), expected.empty()) << path;
        EXPECT_EQ(reason, expected) << path;
    }
}

/// The good one leaves a file behind when any of its code runs.
TEST_F(Preflight, RunsNothingAndLoadsNothing) {
    const std::string trace = folder.file("trace");
    ASSERT_EQ(::setenv("HALVEX_PREFLIGHT_TRACE", trace.c_str(), 1), 0);
    std::string reason;
    EXPECT_TRUE(platform::dynamicLoader().preflight(HALVEX_PREFLIGHT_GOOD, reason));
    EXPECT_FALSE(fs::exists(trace));
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        EXPECT_EQ(line.find("preflight_good"), line.npos);
    EXPECT_TRUE(platform::dynamicLoader().load(HALVEX_PREFLIGHT_GOOD, reason)) << reason;
    EXPECT_TRUE(fs::exists(trace)) << "its code does run when it is loaded";
    ::unsetenv("HALVEX_PREFLIGHT_TRACE");
}

} // namespace
