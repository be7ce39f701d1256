#include "platform/Defaults.h"
#include "platform/DynamicLoader.h"
#include "platform/posix/ElfFile.h"
#include "platform/posix/Preflight.h"

#include <dlfcn.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace platform::posix {
namespace {

class SharedObject final : public LoadedCode {
  public:
    explicit SharedObject(void* handle) : handle_(handle) {}
    ~SharedObject() override { dlclose(handle_); }

    void* symbol(const char* name) const override { return dlsym(handle_, name); }

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
        Dl_info info{};
        if (dladdr(address, &info) == 0 || !info.dli_fname)
            return {};
        // The program itself goes by the name that it was called by.
        std::error_code none;
        const std::filesystem::path file(info.dli_fname);
        if (!std::filesystem::exists(file, none) || !file.is_absolute())
            return std::filesystem::read_symlink("/proc/self/exe", none).string();
        return file.lexically_normal().string();
    }

    bool preflight(const std::string& path, std::string& reason) const override {
        // Opening some devices does something, and a pipe would be waited for.
        struct stat status {};
        const bool isSomethingElse = ::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
        reason = isSomethingElse ? reasonAgainst(path) : askLoader(path);
        // The loader trusts the header about how long the file is, or dies finding out.
        const auto file = ElfFile::read(path);
        if (file && file->architecture == hostArchitecture() &&
            (!file->isSharedObject || !file->isComplete))
            reason = reasonAgainst(path);
        return reason.empty();
    }

    std::unique_ptr<LoadedCode> load(const std::string& path, std::string& reason) override {
        reason = reasonAgainst(path);
        if (!reason.empty())
            return nullptr;
        // At once: a symbol that nobody defines would end the program when it is first called.
        if (void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
            return std::make_unique<SharedObject>(handle);
        const char* text = dlerror();
        reason = text ? text : "refused by the dynamic loader";
        return nullptr;
    }

  private:
    /// The loader itself maps a file that is cut off, and the program dies on the missing pages.
    std::string reasonAgainst(const std::string& path) const {
        const auto file = ElfFile::read(path);
        if (!file)
            return "no executable code in " + path;
        if (file->architecture != hostArchitecture())
            return "code for another processor (" + std::to_string(file->architecture) + ") in " +
                   path;
        if (!file->isSharedObject)
            return "no shared object in " + path;
        if (!file->isComplete)
            return "the code is cut off in " + path;
        return {};
    }
};

} // namespace

} // namespace platform::posix

platform::DynamicLoader& platform::defaults::dynamicLoader() {
    static posix::PosixDynamicLoader loader;
    return loader;
}
