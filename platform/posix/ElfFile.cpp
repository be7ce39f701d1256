#include "platform/posix/ElfFile.h"

#include "platform/posix/Descriptor.h"

#include <array>
#include <bit>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace platform::posix {
namespace {

struct Machine {
    int elfMachine;
    int architecture;
};

// DynamicLoader's number of each processor family; 0x1000000 marks the 64-bit variant.
constexpr int k64Bit = 0x1000000;
constexpr std::array kMachines{
    Machine{EM_386, 7},  Machine{EM_X86_64, 7 | k64Bit},
    Machine{EM_ARM, 12}, Machine{EM_AARCH64, 12 | k64Bit},
    Machine{EM_PPC, 18}, Machine{EM_PPC64, 18 | k64Bit},
};

int architectureOf(int elfMachine) {
    for (const Machine& machine : kMachines) {
        if (machine.elfMachine == elfMachine)
            return machine.architecture;
    }
    return 0;
}

class File {
  public:
    explicit File(const std::string& path)
        : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status {};
        if (descriptor_ && ::fstat(descriptor_.get(), &status) == 0 && S_ISREG(status.st_mode))
            size_ = static_cast<std::uint64_t>(status.st_size);
    }

    std::uint64_t size() const { return size_; }

    template <class T>
    bool readAt(std::uint64_t offset, T& value) const {
        return offset <= size_ && sizeof(T) <= size_ - offset &&
               ::pread(descriptor_.get(), &value, sizeof(T), static_cast<off_t>(offset)) ==
                   sizeof(T);
    }

  private:
    Descriptor descriptor_;
    std::uint64_t size_ = 0;
};

bool fits(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
    return offset <= size && length <= size - offset;
}

/// Returns whether the file contains every byte that the loader would map, and the section table.
bool isComplete(const File& file, const Elf64_Ehdr& header) {
    if (header.e_phentsize != sizeof(Elf64_Phdr) || header.e_phnum == 0)
        return false;
    const std::uint64_t sections = std::uint64_t{header.e_shnum} * header.e_shentsize;
    if (header.e_shnum > 0 && !fits(header.e_shoff, sections, file.size()))
        return false;
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment{};
        if (!file.readAt(header.e_phoff + i * sizeof segment, segment))
            return false;
        if (!fits(segment.p_offset, segment.p_filesz, file.size()))
            return false;
    }
    return true;
}

template <class Integer>
Integer fromByteOrder(Integer value, unsigned char order) {
    const bool native = (order == ELFDATA2LSB) == (std::endian::native == std::endian::little);
    return native ? value : static_cast<Integer>((value >> 8) | (value << 8));
}

} // namespace

std::optional<ElfFile> ElfFile::read(const std::string& path) {
    const File file(path);
    // The fields up to e_machine have the same offsets in 32-bit and 64-bit files.
    Elf32_Ehdr start{};
    if (!file.readAt(0, start) || std::memcmp(start.e_ident, ELFMAG, SELFMAG) != 0)
        return std::nullopt;
    const unsigned char order = start.e_ident[EI_DATA];
    ElfFile result;
    result.architecture = architectureOf(fromByteOrder(start.e_machine, order));
    result.isSharedObject = fromByteOrder(start.e_type, order) == ET_DYN;
    Elf64_Ehdr header{};
    const bool native = fromByteOrder(std::uint16_t{1}, order) == 1;
    if (start.e_ident[EI_CLASS] == ELFCLASS64 && native && file.readAt(0, header))
        result.isComplete = platform::posix::isComplete(file, header);
    return result;
}

} // namespace platform::posix
