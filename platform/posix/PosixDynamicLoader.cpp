#include "platform/Defaults.h"
#include "platform/DynamicLoader.h"
#include "platform/Operation.h"
#include "platform/TrustedFile.h"
#include "platform/posix/ElfFile.h"
#include "platform/posix/LoadedFile.h"
#include "platform/posix/Preflight.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <utility>

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

/// The files that code was loaded from, by the names that the dynamic loader knows them by. The
/// loader takes two files with the same name for the same one, so a file stays open, and its
/// descriptor's number in use, as long as its code is loaded. Thread-safe.
class LoadedFiles {
  public:
    /// Returns the name. A debugger can open it too, because it contains the process's number.
    std::string add(std::shared_ptr<const TrustedFile> file) {
        std::error_code ignored;
        const std::string process = std::filesystem::read_symlink("/proc/self", ignored).string();
        std::string name = "/proc/" + process + "/fd/" + std::to_string(file->descriptor());
        const std::lock_guard lock(mutex_);
        files_.insert_or_assign(name, std::move(file));
        return name;
    }
    /// Closes the file unless its code is still loaded.
    void removeIfUnloaded(const std::string& name) {
        if (void* handle = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD)) {
            dlclose(handle);
            return;
        }
        const std::lock_guard lock(mutex_);
        files_.erase(name);
    }
    std::optional<std::string> pathOf(const std::string& name) {
        const std::lock_guard lock(mutex_);
        const auto found = files_.find(name);
        return found == files_.end() ? std::nullopt : std::optional(found->second->path());
    }

  private:
    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<const TrustedFile>> files_;
};

// Never destroyed, because loaded code may still be unloaded after main.
LoadedFiles& loadedFiles() {
    static auto* const files = new LoadedFiles;
    return *files;
}

class SharedObject final : public LoadedCode {
  public:
    SharedObject(void* handle, std::string name) : handle_(handle), name_(std::move(name)) {}
    ~SharedObject() override {
        dlclose(handle_);
        loadedFiles().removeIfUnloaded(name_);
    }

    void* symbol(const char* name) const override { return dlsym(handle_, name); }
    AddressRange addresses() const override {
        link_map* object = nullptr;
        return dlinfo(handle_, RTLD_DI_LINKMAP, static_cast<void*>(&object)) == 0
                   ? addressesOfObjectAt(object->l_addr)
                   : AddressRange{};
    }

  private:
    void* handle_;
    std::string name_;
};

class PosixDynamicLoader final : public DynamicLoader {
  public:
    std::vector<int> executableArchitectures(const std::string& path) const override {
        return guardedOperation([&] {
            const auto file = ElfFile::read(path);
            return file && file->architecture != 0 ? std::vector{file->architecture}
                                                   : std::vector<int>{};
        });
    }

    int hostArchitecture() const override {
        static const int architecture = [] {
            const auto self = ElfFile::read("/proc/self/exe");
            return self ? self->architecture : 0;
        }();
        return architecture;
    }

    std::string fileOfAddress(const void* address) const override {
        return guardedOperation([&]() -> std::string {
            const std::filesystem::path file(loadedFileAt(address));
            if (file.empty())
                return {};
            if (auto path = loadedFiles().pathOf(file))
                return *std::move(path);
            // For the program itself, this is its name on the command line, which may not be a
            // path.
            std::error_code ignored;
            if (!std::filesystem::exists(file, ignored) || !file.is_absolute())
                return std::filesystem::read_symlink("/proc/self/exe", ignored).string();
            return file.lexically_normal().string();
        });
    }

    bool preflight(const std::string& path, std::string& reason) const override {
        reason = guardedOperation([&] { return loadError(path); }, "out of memory");
        return reason.empty();
    }

    std::string refusalReason(const TrustedFile& file) const override {
        return guardedOperation(
            [&] {
                const auto header = ElfFile::read(file.descriptor());
                std::string error = headerError(header, file.path());
                if (error.empty() && !header->libraryPaths.empty())
                    error = "libraries outside of the system's folders (" +
                            header->libraryPaths.front() + ") needed by " + file.path();
                return error;
            },
            "out of memory");
    }

    std::unique_ptr<LoadedCode> load(std::shared_ptr<const TrustedFile> file,
                                     std::string& reason) noexcept override {
        reason = "out of memory";
        return guardedStep([&]() -> std::unique_ptr<LoadedCode> {
            if (!file)
                return nullptr;
            reason = refusalReason(*file);
            if (!reason.empty())
                return nullptr;
            const std::string path = file->path();
            std::string name = loadedFiles().add(std::move(file));
            std::unique_ptr<void, int (*)(void*)> handle(open(name), ::dlclose);
            if (handle) {
                auto code = std::make_unique<SharedObject>(handle.get(), std::move(name));
                static_cast<void>(handle.release());
                return code;
            }
            const char* text = dlerror();
            reason = text ? text : "unknown error of the dynamic loader";
            if (const auto at = reason.find(name); at != std::string::npos)
                reason.replace(at, name.size(), path);
            loadedFiles().removeIfUnloaded(name);
            return nullptr;
        });
    }

  private:
    // RTLD_NOW: with lazy binding, the first call of an undefined symbol would end the program.
    // noexcept: an exception from a static constructor would leave the system's loader locked.
    static void* open(const std::string& name) noexcept {
        return dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    }

    /// Returns why the file cannot be loaded, or an empty string.
    std::string loadError(const std::string& path) const {
        // Merely opening some devices has effects, and opening a pipe would block.
        struct stat status {};
        const bool notRegular = ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
        const auto file = ElfFile::read(path);
        std::string reason = notRegular ? headerError(file, path) : preflightError(path);
        // The loader does not check the file's size: it accepts a truncated file or crashes.
        if (file && file->architecture == hostArchitecture() &&
            (!file->isSharedObject || !file->isComplete))
            reason = headerError(file, path);
        return reason;
    }

    /// Returns why the file at @p path must not be passed to the loader, or an empty string. If the
    /// loader mapped a truncated file, the process would crash on the missing pages.
    std::string headerError(const std::optional<ElfFile>& file, const std::string& path) const {
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
