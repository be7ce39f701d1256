#include "platform/posix/ElfFile.h"

#include "tests/platform/posix/RealFiles.h"

#include <elf.h>

using platform::posix::ElfFile;

namespace {

using ElfFileTest = test::RealFiles;

TEST_F(ElfFileTest, NumbersProcessorsAsThePlatformDoes) {
    const std::tuple<char, char, std::uint16_t, int> cases[] = {
        {ELFCLASS32, ELFDATA2LSB, EM_386, 7},  {ELFCLASS64, ELFDATA2LSB, EM_X86_64, 16777223},
        {ELFCLASS32, ELFDATA2MSB, EM_PPC, 18}, {ELFCLASS64, ELFDATA2MSB, EM_PPC64, 16777234},
        {ELFCLASS32, ELFDATA2LSB, EM_ARM, 12}, {ELFCLASS64, ELFDATA2LSB, EM_AARCH64, 16777228},
        {ELFCLASS64, ELFDATA2LSB, EM_68K, 0},
    };
    for (const auto& [fileClass, order, machine, architecture] : cases) {
        std::string header = ELFMAG + std::string{fileClass, order};
        header.resize(64);
        const std::size_t low = order == ELFDATA2LSB ? 18 : 19; // the other one of the two is high
        header[low] = static_cast<char>(machine & 0xFF);
        const auto found = ElfFile::read(folder.write("code", header));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->architecture, architecture);
        EXPECT_FALSE(found->isComplete) << "a header alone";
    }
}

} // namespace
