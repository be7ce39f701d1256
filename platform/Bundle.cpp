#include "platform/Bundle.h"

#include "platform/DynamicLoader.h"
#include "platform/FileManager.h"
#include "platform/Operation.h"
#include "platform/PropertyListService.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

namespace platform {
namespace {

struct Registry {
    std::mutex mutex;
    std::vector<std::shared_ptr<Bundle>> loaded; ///< see setCodeState, in order of loading
    std::map<std::string, std::shared_ptr<Bundle>> lastRead; ///< by path

    template <class Predicate>
    std::shared_ptr<Bundle> findLoaded(Predicate matches) {
        const std::lock_guard lock(mutex);
        const auto found = std::ranges::find_if(loaded, matches);
        return found == loaded.end() ? nullptr : *found;
    }
    std::shared_ptr<Bundle> findLastRead(const std::string& path) {
        const std::lock_guard lock(mutex);
        const auto found = lastRead.find(path);
        return found == lastRead.end() ? nullptr : found->second;
    }
};

// Never destroyed, because threads that outlive main may still use it.
Registry& registry() {
    static NeverDestroyed<Registry> instance;
    return instance.get();
}

constexpr std::uint64_t kMaximumInfoBytes = 1 << 20;

std::string registryKey(const std::string& path) {
    return appendingPathComponent(path, {});
}

std::string contents(const std::string& bundle, std::string_view relative) {
    return appendingPathComponent(bundle, "Contents/" + std::string(relative));
}

/// Returns "Name" for "libName.so.1", and an empty string if the file is not named like a library.
std::string libraryName(const std::string& file) {
    const auto end = file.find(".so");
    if (!file.starts_with("lib") || end == std::string::npos)
        return {};
    return file.substr(3, end - 3);
}

std::string bundlePathForCode(const std::string& file) {
    const std::string folder = deletingLastPathComponent(file);
    const std::string around = deletingLastPathComponent(folder);
    if (lastPathComponent(folder) == "Linux" && lastPathComponent(around) == "Contents")
        return deletingLastPathComponent(around);
    const std::string library = libraryName(lastPathComponent(file));
    return library.empty() ? folder
                           : appendingPathComponent(folder, "halvex/" + library + ".bundle");
}

std::shared_ptr<Bundle> bundleForCode(const std::string& file) {
    const std::string path = bundlePathForCode(file);
    const auto hasPath = [&](const auto& bundle) { return bundle->bundlePath() == path; };
    if (auto bundle = registry().findLoaded(hasPath))
        return bundle;
    if (auto bundle = Bundle::bundleWithPath(path))
        return bundle;
    return std::make_shared<Bundle>(path, std::nullopt);
}

/// Returns a bundle without a path, and allocates nothing.
std::shared_ptr<Bundle> emptyBundle() {
    static Bundle bundle({}, std::nullopt);
    return {std::shared_ptr<Bundle>(), &bundle};
}

} // namespace

std::shared_ptr<Bundle> Bundle::bundleForClass(const std::type_info& type) {
    // The type_info object may have been copied into the program by the linker, but not its name.
    return guardedOperation(
        [&] { return bundleForCode(dynamicLoader().fileOfAddress(type.name())); }, emptyBundle());
}

std::shared_ptr<Bundle> Bundle::mainBundle() {
    std::error_code none;
    return guardedOperation(
        [&] {
            return bundleForCode(std::filesystem::read_symlink("/proc/self/exe", none).string());
        },
        emptyBundle());
}

std::shared_ptr<Bundle> Bundle::bundleWithPath(const std::string& path, std::string* reason) {
    return guardedOperation([&]() -> std::shared_ptr<Bundle> {
        bool isDirectory = false;
        const bool exists = fileManager().fileExists(path, &isDirectory);
        if (!isDirectory) {
            if (reason)
                *reason = "there is no such folder";
            return exists ? nullptr : lastRead(path);
        }
        std::optional<PropertyList::Dictionary> info;
        auto result = propertyLists().read(contents(path, "Info.plist"), kMaximumInfoBytes);
        if (PropertyList::Dictionary* dictionary = result ? result.value->dictionary() : nullptr)
            info = std::move(*dictionary);
        else if (reason)
            *reason = "Info.plist: " + (result ? "not a dictionary" : result.error.text());
        auto bundle = std::make_shared<Bundle>(path, std::move(info));
        const std::lock_guard lock(registry().mutex);
        registry().lastRead.insert_or_assign(registryKey(path), bundle);
        return bundle;
    });
}

std::shared_ptr<Bundle> Bundle::lastRead(const std::string& path) {
    return registry().findLastRead(registryKey(path));
}

std::shared_ptr<Bundle> Bundle::bundleWithIdentifier(std::string_view identifier) {
    return guardedOperation([&] {
        return registry().findLoaded(
            [&](const auto& bundle) { return bundle->bundleIdentifier() == identifier; });
    });
}

void Bundle::setCodeState(const std::shared_ptr<Bundle>& bundle, Code code) {
    guardedOperation([&] {
        const std::lock_guard lock(registry().mutex);
        std::erase(registry().loaded, bundle);
        if (code == Code::Loaded)
            registry().loaded.push_back(bundle);
    });
}

Bundle::Bundle(std::string path, std::optional<PropertyList::Dictionary> infoDictionary)
    : path_(std::move(path)), info_(std::move(infoDictionary)) {}

std::optional<std::string> Bundle::stringForInfoDictionaryKey(std::string_view key) const {
    return guardedOperation([&] {
        const PropertyList* value = info_ ? info_->find(key) : nullptr;
        const auto text = value ? value->string() : std::nullopt;
        return text ? std::optional(std::string(*text)) : std::nullopt;
    });
}

std::optional<std::string> Bundle::textForInfoDictionaryKey(std::string_view key) const {
    const PropertyList* value = info_ ? info_->find(key) : nullptr;
    if (const auto integer = value ? value->integer() : std::nullopt)
        return std::to_string(*integer);
    if (const auto real = value ? value->real() : std::nullopt) {
        std::array<char, 32> text{}; // the longest shortest form has 24 characters
        const auto end = std::to_chars(text.data(), text.data() + text.size(), *real).ptr;
        return std::string(text.data(), end);
    }
    return stringForInfoDictionaryKey(key);
}

std::optional<std::string> Bundle::version() const {
    return textForInfoDictionaryKey("CFBundleVersion");
}

std::optional<std::string> Bundle::bundleIdentifier() const {
    return stringForInfoDictionaryKey("CFBundleIdentifier");
}

std::optional<std::string> Bundle::executablePath() const {
    return guardedOperation([&]() -> std::optional<std::string> {
        const auto name = stringForInfoDictionaryKey("CFBundleExecutable");
        const bool ownFile = name && !name->empty() && name->find('/') == std::string::npos &&
                             *name != "." && *name != "..";
        if (!ownFile)
            return std::nullopt;
        return contents(path_, "Linux/" + *name);
    });
}

std::vector<int> Bundle::executableArchitectures() const {
    return guardedOperation([&] {
        const auto executable = executablePath();
        return executable ? dynamicLoader().executableArchitectures(*executable)
                          : std::vector<int>();
    });
}

std::string Bundle::description() const {
    return guardedOperation([&] { return "NSBundle <" + path_ + '>'; });
}

std::string Bundle::builtInPlugInsPath() const {
    return guardedOperation([&] { return contents(path_, "PlugIns"); });
}

std::optional<std::string> Bundle::pathForResource(std::string_view name,
                                                   std::string_view type) const {
    return guardedOperation([&] {
        std::string file =
            contents(path_, "Resources/" + std::string(name) + '.' + std::string(type));
        return fileManager().fileExists(file) ? std::optional(std::move(file)) : std::nullopt;
    });
}

} // namespace platform
