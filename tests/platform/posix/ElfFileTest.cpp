#include "platform/posix/ElfFile.h"

#include "platform/DynamicLoader.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <elf.h>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

using platform::posix::ElfFile;

namespace {

/// The start of a file for a processor.
std::string header(std::uint8_t fileClass, std::uint8_t order, std::uint16_t machine) {
    std::string bytes(64, '\0');
    bytes.replace(0, 4, ELFMAG);
    bytes[EI_CLASS] = static_cast<char>(fileClass);
    bytes[EI_DATA] = static_cast<char>(order);
    const int low = order == ELFDATA2LSB ? 18 : 19;
    bytes[static_cast<std::size_t>(low)] = static_cast<char>(machine & 0xFF);
    bytes[static_cast<std::size_t>(37 - low)] = static_cast<char>(machine >> 8);
    return bytes;
}

TEST(ElfFile, NumbersProcessorsAsThePlatformDoes) {
    const test::TemporaryFolder folder;
    struct Case {
        std::uint8_t fileClass, order;
        std::uint16_t machine;
        int architecture;
    };
    const Case cases[] = {
        {ELFCLASS32, ELFDATA2LSB, EM_386, 7},  {ELFCLASS64, ELFDATA2LSB, EM_X86_64, 16777223},
        {ELFCLASS32, ELFDATA2MSB, EM_PPC, 18}, {ELFCLASS64, ELFDATA2MSB, EM_PPC64, 16777234},
        {ELFCLASS32, ELFDATA2LSB, EM_ARM, 12}, {ELFCLASS64, ELFDATA2LSB, EM_AARCH64, 16777228},
        {ELFCLASS64, ELFDATA2LSB, EM_68K, 0},
    };
    for (const Case& c : cases) {
        const auto file =
            ElfFile::read(folder.write("code", header(c.fileClass, c.order, c.machine)));
        ASSERT_TRUE(file);
        EXPECT_EQ(file->architecture, c.architecture);
        EXPECT_FALSE(file->isComplete) << "a header alone";
    }
}

TEST(ElfFile, IsNothingThatHasNoHeader) {
    const test::TemporaryFolder folder;
    EXPECT_FALSE(ElfFile::read(folder.file("missing")));
    EXPECT_FALSE(ElfFile::read(folder.path()));
    EXPECT_FALSE(ElfFile::read(folder.write("empty", "")));
    EXPECT_FALSE(ElfFile::read(folder.write("text", std::string(100, 'x'))));
    EXPECT_FALSE(ElfFile::read(folder.write("short", ELFMAG)));
    ASSERT_EQ(mkfifo(folder.file("fifo").c_str(), 0600), 0);
    EXPECT_FALSE(ElfFile::read(folder.file("fifo"))) << "and it does not wait for a writer";
}

TEST(DynamicLoader, RefusesCodeThatIsCutOffAnywhere) {
    std::ifstream whole(HALVEX_SHARED_OBJECT, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(whole)), {});
    ASSERT_GT(bytes.size(), 1000U);
    const test::TemporaryFolder folder;
    std::string reason;
    for (std::size_t part = 0; part < 20; ++part) {
        const auto path = folder.write("code", bytes.substr(0, bytes.size() * part / 20));
        EXPECT_EQ(platform::dynamicLoader().load(path, reason), nullptr) << part;
        EXPECT_NE(reason, "") << part;
    }
    EXPECT_NE(platform::dynamicLoader().load(HALVEX_SHARED_OBJECT, reason), nullptr) << reason;
}

} // namespace
