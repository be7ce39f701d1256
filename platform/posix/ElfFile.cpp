#include "platform/posix/ElfFile.h"

#include "platform/posix/Descriptor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

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

/// More rows than any real file has: a table read from a damaged file must not fill the memory.
constexpr std::uint64_t kMaximumRows = 1 << 16;

class File {
  public:
    explicit File(int descriptor) : descriptor_(descriptor) {
        struct stat status {};
        if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
            size_ = static_cast<std::uint64_t>(status.st_size);
    }

    std::uint64_t size() const { return size_; }

    template <class T>
    bool readAt(std::uint64_t offset, T& value) const {
        return offset <= size_ && sizeof(T) <= size_ - offset &&
               ::pread(descriptor_, &value, sizeof(T), static_cast<off_t>(offset)) == sizeof(T);
    }
    /// Reads a table with one system call. Returns std::nullopt if the file does not contain it.
    template <class T>
    std::optional<std::vector<T>> tableAt(std::uint64_t offset, std::uint64_t count) const {
        if (count > kMaximumRows || offset > size_ || count * sizeof(T) > size_ - offset)
            return std::nullopt;
        std::vector<T> rows(count);
        const std::size_t bytes = count * sizeof(T);
        const ssize_t read = ::pread(descriptor_, rows.data(), bytes, static_cast<off_t>(offset));
        return read == static_cast<ssize_t>(bytes) ? std::optional(std::move(rows)) : std::nullopt;
    }
    /// Returns the bytes up to the next zero byte, at most PATH_MAX.
    std::string textAt(std::uint64_t offset) const {
        std::array<char, PATH_MAX> text{};
        const ssize_t size =
            ::pread(descriptor_, text.data(), text.size(), static_cast<off_t>(offset));
        const auto length =
            ::strnlen(text.data(), static_cast<std::size_t>(std::max(size, ssize_t{0})));
        return {text.data(), length};
    }

  private:
    int descriptor_;
    std::uint64_t size_ = 0;
};

bool fits(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
    return offset <= size && length <= size - offset;
}

/// Returns the segments if the file contains every byte that the loader would map, and the section
/// table. Otherwise returns an empty list.
std::vector<Elf64_Phdr> completeSegments(const File& file, const Elf64_Ehdr& header) {
    if (header.e_phentsize != sizeof(Elf64_Phdr))
        return {};
    const std::uint64_t sections = std::uint64_t{header.e_shnum} * header.e_shentsize;
    if (header.e_shnum > 0 && !fits(header.e_shoff, sections, file.size()))
        return {};
    auto segments = file.tableAt<Elf64_Phdr>(header.e_phoff, header.e_phnum);
    const bool complete =
        segments && std::ranges::all_of(*segments, [&](const Elf64_Phdr& segment) {
            return fits(segment.p_offset, segment.p_filesz, file.size());
        });
    return complete ? std::move(*segments) : std::vector<Elf64_Phdr>();
}

/// Returns std::nullopt if the entries cannot be read.
std::optional<std::vector<Elf64_Dyn>> dynamicEntries(const File& file,
                                                     const std::vector<Elf64_Phdr>& segments) {
    std::vector<Elf64_Dyn> entries;
    for (const Elf64_Phdr& segment : segments) {
        if (segment.p_type != PT_DYNAMIC)
            continue;
        const auto table =
            file.tableAt<Elf64_Dyn>(segment.p_offset, segment.p_filesz / sizeof(Elf64_Dyn));
        if (!table)
            return std::nullopt;
        entries.insert(entries.end(), table->begin(), table->end());
    }
    return entries;
}

/// Returns the offset in the file of what is mapped at @p address, or an offset after its end.
std::uint64_t offsetOf(std::uint64_t address, const std::vector<Elf64_Phdr>& segments) {
    for (const Elf64_Phdr& segment : segments)
        if (segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
            address - segment.p_vaddr < segment.p_filesz)
            return address - segment.p_vaddr + segment.p_offset;
    return INT64_MAX;
}

std::vector<std::string> libraryPathsIn(const File& file, const std::vector<Elf64_Phdr>& segments,
                                        const std::vector<Elf64_Dyn>& entries) {
    const auto table = std::ranges::find(entries, DT_STRTAB, &Elf64_Dyn::d_tag);
    std::vector<std::string> paths;
    for (const Elf64_Dyn& entry : entries) {
        const bool isRunPath = entry.d_tag == DT_RPATH || entry.d_tag == DT_RUNPATH;
        const bool isLibrary =
            entry.d_tag == DT_NEEDED || entry.d_tag == DT_AUXILIARY || entry.d_tag == DT_FILTER;
        if (table == entries.end() || (!isRunPath && !isLibrary))
            continue;
        std::string text = file.textAt(offsetOf(table->d_un.d_ptr + entry.d_un.d_val, segments));
        if (isRunPath ? !text.empty() : text.find('/') != std::string::npos)
            paths.push_back(std::move(text));
    }
    return paths;
}

template <class Integer>
Integer fromByteOrder(Integer value, unsigned char order) {
    const bool native = (order == ELFDATA2LSB) == (std::endian::native == std::endian::little);
    return native ? value : static_cast<Integer>((value >> 8) | (value << 8));
}

} // namespace

std::optional<ElfFile> ElfFile::read(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file ? read(file.get()) : std::nullopt;
}

std::optional<ElfFile> ElfFile::read(int descriptor) {
    const File file(descriptor);
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
    if (start.e_ident[EI_CLASS] == ELFCLASS64 && native && file.readAt(0, header)) {
        const auto segments = completeSegments(file, header);
        const auto entries = dynamicEntries(file, segments);
        result.isComplete = !segments.empty() && entries;
        if (entries)
            result.libraryPaths = libraryPathsIn(file, segments, *entries);
    }
    return result;
}

} // namespace platform::posix
