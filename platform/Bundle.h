#pragma once

#include "platform/values/PropertyList.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace platform {

/// A folder that holds code or resources in the bundle layout: Contents/Info.plist,
/// Contents/Linux/<CFBundleExecutable>, Contents/Resources, Contents/PlugIns. Immutable; safe from
/// any thread.
class Bundle {
  public:
    /// Opens the bundle in a folder, as it is now. A folder whose Info.plist is missing or no
    /// dictionary is a bundle without an information dictionary; why is then written to @p reason
    /// when that is not null. Where nothing is any more, it gives what was last opened at this
    /// path in this process: who means to use the bundle's files looks for them. Null when nothing
    /// ever was, and when what is there is no folder; why is written to @p reason in each of these
    /// cases. Nothing is logged.
    static std::shared_ptr<Bundle> bundleWithPath(const std::string& path,
                                                  std::string* reason = nullptr);

    /// The bundle with this identifier among those whose code a host has said by setCode that this
    /// process has loaded; of several the first. The menu bar says it of none. Null when there is
    /// none.
    static std::shared_ptr<Bundle> bundleWithIdentifier(std::string_view identifier);
    /// What a host calls when it has loaded a bundle's code, and when it has let it go. In between
    /// bundleWithIdentifier finds the bundle, and keeps it.
    enum class Code { Loaded, Unloaded };
    static void setCode(const std::shared_ptr<Bundle>& bundle, Code code);

    /// The bundle that a class's code came with: the folder around Contents/Linux, or, of a library
    /// lib<Name>.so, halvex/<Name>.bundle beside it. For other code, a program's own mostly, its
    /// folder counts as one. Never null; a bundle whose files are gone has no resources.
    /// Take the class of an object with typeid(*object), which says what the object really is.
    static std::shared_ptr<Bundle> bundleForClass(const std::type_info& type);
    /// The same of the program that runs.
    static std::shared_ptr<Bundle> mainBundle();

    Bundle(std::string path, std::optional<PropertyList::Dictionary> infoDictionary);

    const std::string& bundlePath() const { return path_; }
    /// What a log line calls it.
    std::string description() const { return "NSBundle <" + path_ + '>'; }
    /// Null when there is none.
    const PropertyList::Dictionary* infoDictionary() const { return info_ ? &*info_ : nullptr; }
    /// The string under a key of the information dictionary; nothing when there is none.
    std::optional<std::string> stringForInfoDictionaryKey(std::string_view key) const;
    std::optional<std::string> bundleIdentifier() const;
    /// CFBundleVersion, or std::nullopt.
    std::optional<std::string> version() const;

    /// Where the code is; nothing when CFBundleExecutable does not name a file of the bundle's own
    /// folder for code. Whether the file exists is not looked at.
    std::optional<std::string> executablePath() const;
    /// The processors that the code is for, as DynamicLoader numbers them; empty when there is no
    /// code.
    std::vector<int> executableArchitectures() const;
    /// Contents/PlugIns.
    std::string builtInPlugInsPath() const;
    /// The file "name.type" in Contents/Resources; nothing when it is not there.
    std::optional<std::string> pathForResource(std::string_view name, std::string_view type) const;

  private:
    std::string path_;
    std::optional<PropertyList::Dictionary> info_;
};

} // namespace platform
