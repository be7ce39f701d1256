#include "tests/platform/posix/FileManagerFixture.h"

#include "platform/DynamicLoader.h"
#include "platform/TrustedFile.h"
#include "platform/posix/ElfFile.h"
#include "tests/support/ScopedEnvironment.h"

#include <elf.h>

namespace {

using Preflight = test::FileManagerFixture;

std::unique_ptr<platform::LoadedCode> load(const std::string& path, std::string& reason) {
    return platform::dynamicLoader().load(platform::TrustedFile::open(path, reason), reason);
}

TEST_F(Preflight, ReportsWhyTheLoaderWouldRefuseAFile) {
    const std::string good = test::contents(HALVEX_PREFLIGHT_GOOD);
    std::string other = good;
    other.replace(18, 2, "\xb7\x00", 2); // e_machine: another processor
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
    const std::string noFile = ": cannot open shared object file: No such file or directory";
    const std::string noCode = "no executable code in ";
    const std::pair<std::string, std::string> cases[] = {
        {HALVEX_SHARED_OBJECT, ""},
        {HALVEX_PREFLIGHT_UNDEFINED,
         std::string("undefined symbol: undefinedFunction (") + HALVEX_PREFLIGHT_UNDEFINED + ")"},
        {HALVEX_PREFLIGHT_UNLOCATED, "libhalvex_preflight_dependency.so => not found"},
        {file("none"), file("none") + noFile},
        {folder.write("text", std::string(5000, 't')), file("text") + ": invalid ELF header"},
        {folder.write("other", other), file("other") + noFile},
        {file("pipe"), noCode + file("pipe")},
        {folder.path().string(), noCode + folder.path().string()},
    };
    for (const auto& [path, expected] : cases) {
        std::string reason = "of an earlier call";
        EXPECT_EQ(platform::dynamicLoader().preflight(path, reason), expected.empty()) << path;
        EXPECT_EQ(reason, expected) << path;
    }
}

/// PreflightGood creates a file when its code runs.
TEST_F(Preflight, RunsAndLoadsNoCode) {
    const std::string trace = file("trace");
    const test::ScopedEnvironment environment("HALVEX_PREFLIGHT_TRACE", trace);
    std::string reason;
    EXPECT_TRUE(platform::dynamicLoader().preflight(HALVEX_PREFLIGHT_GOOD, reason));
    EXPECT_FALSE(std::filesystem::exists(trace));
    EXPECT_EQ(test::contents("/proc/self/maps").find("preflight_good"), std::string::npos);
    EXPECT_TRUE(load(HALVEX_PREFLIGHT_GOOD, reason)) << reason;
    EXPECT_TRUE(std::filesystem::exists(trace)) << "load runs the code";
}

TEST_F(Preflight, RefusesTruncatedCodeAsLoadDoes) {
    const std::string bytes = test::contents(HALVEX_SHARED_OBJECT);
    std::string reason;
    for (std::size_t part = 0; part < 20; ++part) {
        const auto path = folder.write("code", bytes.substr(0, bytes.size() * part / 20));
        EXPECT_EQ(load(path, reason), nullptr) << part;
        EXPECT_FALSE(platform::dynamicLoader().preflight(path, reason)) << part;
    }
    EXPECT_NE(load(HALVEX_SHARED_OBJECT, reason), nullptr) << reason;
    EXPECT_EQ(load(HALVEX_PREFLIGHT_UNDEFINED, reason), nullptr);
    EXPECT_THAT(reason, testing::HasSubstr("undefinedFunction"));
}

TEST_F(Preflight, ReadsTheProcessorFromTheHeader) {
    const std::tuple<char, char, std::uint16_t, int> cases[] = {
        {ELFCLASS32, ELFDATA2LSB, EM_386, 7},  {ELFCLASS64, ELFDATA2LSB, EM_X86_64, 16777223},
        {ELFCLASS32, ELFDATA2MSB, EM_PPC, 18}, {ELFCLASS64, ELFDATA2MSB, EM_PPC64, 16777234},
        {ELFCLASS32, ELFDATA2LSB, EM_ARM, 12}, {ELFCLASS64, ELFDATA2LSB, EM_AARCH64, 16777228},
        {ELFCLASS64, ELFDATA2LSB, EM_68K, 0},
    };
    for (const auto& [fileClass, order, machine, architecture] : cases) {
        std::string header = ELFMAG + std::string{fileClass, order};
        header.resize(64);
        const std::size_t lowByte = order == ELFDATA2LSB ? 18 : 19;
        header[lowByte] = static_cast<char>(machine & 0xFF);
        const auto found = platform::posix::ElfFile::read(folder.write("code", header));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->architecture, architecture);
        EXPECT_FALSE(found->isComplete) << "there is only a header";
    }
}

} // namespace
