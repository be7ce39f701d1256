#include "platform/Defaults.h"
#include "platform/DynamicLoader.h"
#include "platform/posix/ElfFile.h"
#include "platform/posix/LoadedFile.h"
#include "platform/posix/Preflight.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <sys/stat.h>
#include <system_error>

namespace platform::posix {
namespace {

/// Returns the addresses that the object with the load address @p base occupies.
AddressRange addressesOfObjectAt(ElfW(Addr) base) {
    struct Search {
        ElfW(Addr) base;
        AddressRange found;
    } search{base, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* object, std::size_t, void* data) {
            auto& [searched, found] = *static_cast<Search*>(data);
            if (object->dlpi_addr != searched)
                return 0;
            found.begin = UINTPTR_MAX;
            for (int i = 0; i < object->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = object->dlpi_phdr[i];
                if (segment.p_type != PT_LOAD)
                    continue;
                const std::uintptr_t begin = searched + segment.p_vaddr;
                found.begin = std::min(found.begin, begin);
                found.end = std::max(found.end, begin + segment.p_memsz);
            }
            return 1;
        },
        &search);
    return search.found;
}

class SharedObject final : public LoadedCode {
  public:
    explicit SharedObject(void* handle) : handle_(handle) {}
    ~SharedObject() override { dlclose(handle_); }

    void* symbol(const char* name) const override { return dlsym(handle_, name); }
    AddressRange addresses() const override {
        link_map* object = nullptr;
        return dlinfo(handle_, RTLD_DI_LINKMAP, static_cast<void*>(&object)) == 0
                   ? addressesOfObjectAt(object->l_addr)
                   : AddressRange{};
    }

  private:
    void* handle_;
};

class PosixDynamicLoader final : public DynamicLoader {
  public:
    std::vector<int> executableArchitectures(const std::string& path) const override {
        const auto file = ElfFile::read(path);
        return file && file->architecture != 0 ? std::vector{file->architecture}
                                               : std::vector<int>{};
    }

    int hostArchitecture() const override {
        static const int architecture = [] {
            const auto self = ElfFile::read("/proc/self/exe");
            return self ? self->architecture : 0;
        }();
        return architecture;
    }

    std::string fileOfAddress(const void* address) const override {
        const std::filesystem::path file(loadedFileAt(address));
        if (file.empty())
            return {};
        // For the program itself, this is its name on the command line, which may not be a path.
        std::error_code ignored;
        if (!std::filesystem::exists(file, ignored) || !file.is_absolute())
            return std::filesystem::read_symlink("/proc/self/exe", ignored).string();
        return file.lexically_normal().string();
    }

    bool preflight(const std::string& path, std::string& reason) const override {
        // Merely opening some devices has effects, and opening a pipe would block.
        struct stat status {};
        const bool notRegular = ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
        reason = notRegular ? headerError(path) : preflightError(path);
        // The loader does not check the file's size: it accepts a truncated file or crashes.
        const auto file = ElfFile::read(path);
        if (file && file->architecture == hostArchitecture() &&
            (!file->isSharedObject || !file->isComplete))
            reason = headerError(path);
        return reason.empty();
    }

    // noexcept: an exception from a static constructor would leave the system's loader locked.
    std::unique_ptr<LoadedCode> load(const std::string& path,
                                     std::string& reason) noexcept override {
        reason = headerError(path);
        if (!reason.empty())
            return nullptr;
        // RTLD_NOW: with lazy binding, the first call of an undefined symbol would end the program.
        if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
            return std::make_unique<SharedObject>(handle);
        const char* text = dlerror();
        reason = text ? text : "unknown error of the dynamic loader";
        return nullptr;
    }

  private:
    /// Returns why the file must not be passed to the loader, or an empty string. If the loader
    /// mapped a truncated file, the process would crash on the missing pages.
    std::string headerError(const std::string& path) const {
        const auto file = ElfFile::read(path);
        if (!file)
            return "no executable code in " + path;
        if (file->architecture != hostArchitecture())
            return "code for another processor (" + std::to_string(file->architecture) + ") in " +
                   path;
        if (!file->isSharedObject)
            return "not a shared object: " + path;
        if (!file->isComplete)
            return "truncated code in " + path;
        return {};
    }
};

} // namespace
} // namespace platform::posix

platform::DynamicLoader& platform::defaults::dynamicLoader() {
    static posix::PosixDynamicLoader loader;
    return loader;
}
