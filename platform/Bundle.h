#pragma once

#include "platform/values/PropertyList.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace platform {

/// A folder in the bundle layout: Contents/Info.plist, Contents/Linux/CFBundleExecutable,
/// Contents/Resources, Contents/PlugIns. Immutable. Operations never throw. Thread-safe.
class Bundle {
  public:
    /// Reads the bundle at @p path. If Info.plist is missing, is not a dictionary or exceeds 1 MiB,
    /// the bundle has no information dictionary. If @p path no longer exists, returns lastRead.
    /// Returns null if @p path is not a folder, or does not exist and has not been read before. In
    /// all of these cases writes an explanation to @p reason, unless null. Logs nothing.
    static std::shared_ptr<Bundle> bundleWithPath(const std::string& path,
                                                  std::string* reason = nullptr);
    /// Returns the bundle that this process last read at @p path, or null. Its files may have been
    /// replaced or removed since.
    static std::shared_ptr<Bundle> lastRead(const std::string& path);

    /// Returns the first bundle with this identifier among those that a host has registered with
    /// setCodeState, or null. The menu bar registers none.
    static std::shared_ptr<Bundle> bundleWithIdentifier(std::string_view identifier);
    enum class Code { Loaded, Unloaded };
    /// Registers a bundle whose code the host has loaded, or unregisters it after unloading the
    /// code. Registered bundles are kept alive.
    static void setCodeState(const std::shared_ptr<Bundle>& bundle, Code code);

    /// Returns the bundle that contains the code of a class: the folder around Contents/Linux, or
    /// halvex/NAME.bundle next to a library libNAME.so. For other code, usually a program's
    /// own, returns the folder of the executable file as a bundle. Never null; a bundle whose files
    /// have been removed has no resources, and if memory runs out, its path is empty. Use
    /// typeid(*object) for the dynamic class of an object.
    static std::shared_ptr<Bundle> bundleForClass(const std::type_info& type);
    /// Returns the bundle that contains the running program's code, as defined for bundleForClass.
    static std::shared_ptr<Bundle> mainBundle();

    Bundle(std::string path, std::optional<PropertyList::Dictionary> infoDictionary);

    const std::string& bundlePath() const { return path_; }
    /// Returns the text that log lines show for the bundle.
    std::string description() const;
    /// Returns null if the bundle has no information dictionary.
    const PropertyList::Dictionary* infoDictionary() const { return info_ ? &*info_ : nullptr; }
    /// Returns the string under @p key of the information dictionary, or std::nullopt.
    std::optional<std::string> stringForInfoDictionaryKey(std::string_view key) const;
    /// Returns the string under @p key of the information dictionary, or the digits of a number.
    /// Returns std::nullopt for any other value.
    std::optional<std::string> textForInfoDictionaryKey(std::string_view key) const;
    /// Returns CFBundleIdentifier, or std::nullopt.
    std::optional<std::string> bundleIdentifier() const;
    /// Returns CFBundleVersion, also if it is a number, or std::nullopt.
    std::optional<std::string> version() const;

    /// Returns the path of the code, or std::nullopt if CFBundleExecutable is missing or is not a
    /// plain file name. Does not check that the file exists.
    std::optional<std::string> executablePath() const;
    /// Returns the processors that the code is built for, as numbered by DynamicLoader. Empty if
    /// there is no code.
    std::vector<int> executableArchitectures() const;
    /// Returns the path of Contents/PlugIns.
    std::string builtInPlugInsPath() const;
    /// Returns the path of the file "name.type" in Contents/Resources if it exists.
    std::optional<std::string> pathForResource(std::string_view name, std::string_view type) const;

  private:
    std::string path_;
    std::optional<PropertyList::Dictionary> info_;
};

} // namespace platform
