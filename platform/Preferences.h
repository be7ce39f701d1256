#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"
#include "platform/values/PropertyList.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform {

/// Changes to preferences that are written together.
class PreferenceChanges {
  public:
    struct Change {
        std::string key;
        std::optional<PropertyList> value; ///< std::nullopt removes the key
    };

    PreferenceChanges& set(std::string key, PropertyList value);
    PreferenceChanges& set(std::string key, const std::vector<std::string>& values);
    PreferenceChanges& remove(std::string key);

    /// Returns the changes in the order they were added. Of two with the same key, the later wins.
    const std::vector<Change>& list() const { return changes_; }

  private:
    std::vector<Change> changes_;
};

/// The storage behind Preferences, usually a file. Main thread only.
class PreferencesDomain : NonCopyable {
  public:
    using Handler = std::function<void(const std::vector<std::string>& keys)>;

    virtual ~PreferencesDomain();

    /// Returns the path of the file, which may not exist.
    virtual std::string file() const = 0;
    /// Returns the current values, never null. Empty if there are none or they are unreadable.
    virtual std::shared_ptr<const PropertyList::Dictionary> values() = 0;
    /// See Preferences::write.
    virtual bool write(const PreferenceChanges& changes) = 0;
    /// Same for changes that depend on the values: @p change is called with the values in the file
    /// while this program has the file locked. It is not called if the file cannot be read.
    virtual bool update(const std::function<void(PropertyList::Dictionary& values)>& change) = 0;
    /// See Preferences::onChange.
    virtual std::unique_ptr<Watch> onChange(Handler handler) = 0;

    /// Logs that the value under @p key cannot be used, unless that was already logged since
    /// resetInvalid.
    void logInvalid(std::string_view key, std::string_view reason);
    /// Records that the value under @p key is valid or absent.
    void resetInvalid(std::string_view key);

  private:
    std::set<std::string, std::less<>> invalid_; // logged keys
};

/// Settings of one program or item: values by key. Other programs may read and change them at the
/// same time. A regular value; copies refer to the same settings. Main thread only.
///
/// Reading returns the @p fallback if the key is missing, or if its value has another type, which
/// is logged once. It checks whether the file has changed, and reads it again only then. If the
/// file is not a property list with a dictionary as its root, or has more than 8 MiB, every value
/// is the fallback, and the reason is logged once. If memory runs out, this is logged and the
/// result is empty.
class Preferences {
  public:
    /// Creates preferences that contain nothing and cannot be written.
    Preferences() = default;
    /// Every key is @p prefix followed by the key that is passed to the operations.
    explicit Preferences(std::shared_ptr<PreferencesDomain> domain, std::string prefix = "");

    /// Returns the path of the file, which may not exist, or an empty path if these preferences
    /// have no file.
    std::string file() const;

    bool boolean(std::string_view key, bool fallback = false) const;
    std::int64_t integer(std::string_view key, std::int64_t fallback = 0) const;
    /// Also converts integers.
    double real(std::string_view key, double fallback = 0) const;
    std::string string(std::string_view key, std::string_view fallback = "") const;
    /// An array that contains anything but strings has another type.
    std::vector<std::string> strings(std::string_view key,
                                     const std::vector<std::string>& fallback = {}) const;
    PropertyList::Data data(std::string_view key, const PropertyList::Data& fallback = {}) const;
    /// Returns the value of any type, or std::nullopt if the key is missing.
    std::optional<PropertyList> value(std::string_view key) const;
    /// Returns all values, with the keys that set() takes.
    PropertyList::Dictionary values() const;

    /// Writes all @p changes or none. Locks the file, reads it, applies the changes and replaces it
    /// atomically (see FileManager::writeFileAtomically), so that programs that change different
    /// keys at the same time lose nothing. Blocks until the file is on the disk. Does nothing if no
    /// value changes. If the file is not a property list with a dictionary as its root, first
    /// appends ".unreadable" to its name and logs that. Returns false, and logs the reason, if the
    /// file cannot be read or written, if XML cannot represent a value, or if another program keeps
    /// the file locked for more than a second.
    bool write(const PreferenceChanges& changes) const;
    /// Same as write() with one change.
    bool set(std::string_view key, PropertyList value) const;
    bool set(std::string_view key, const std::vector<std::string>& values) const;
    bool remove(std::string_view key) const;

    /// Calls @p handler from the main loop with the keys whose values have changed since they were
    /// last read or reported, whichever program changed them. Exceptions from it are logged with
    /// the owner's identifier and swallowed. It may destroy its own watch. Returns null if there is
    /// no file or the system is out of file watches, which is logged. Needs a running main loop.
    std::unique_ptr<Watch> onChange(PreferencesDomain::Handler handler) const;

  private:
    template <class Result, class Read>
    Result typed(std::string_view key, const char* type, const Result& fallback,
                 const Read& read) const;
    std::string fullKey(std::string_view key) const { return prefix_ + std::string(key); }

    std::shared_ptr<PreferencesDomain> domain_;
    std::string prefix_;
};

/// Opens preferences. Main thread only.
class PreferencesService : NonCopyable {
  public:
    virtual ~PreferencesService();

    /// Returns the domain @p identifier, usually a bundle identifier. Reads nothing yet. Callers
    /// share one object as long as it exists. Returns null, and logs the reason, if @p identifier
    /// is not a file name: if it is empty, contains a slash or control characters, starts with a
    /// dot, is not UTF-8 or has more than 200 bytes.
    virtual std::shared_ptr<PreferencesDomain> domain(std::string_view identifier) = 0;
};

/// Returns the process's preferences. The default stores each domain in the property list
/// "~/Library/Preferences/IDENTIFIER.plist" and needs a PropertyListService.
PreferencesService& preferencesService();
template <>
PreferencesService* exchangeService<PreferencesService>(PreferencesService* service);

/// Creates a service that stores each domain in @p folder, an absolute path.
std::unique_ptr<PreferencesService> makeFilePreferences(std::string folder);

/// Opens the preferences of the domain @p identifier. If that is not a file name, logs this and
/// returns preferences that contain nothing and cannot be written.
Preferences preferences(std::string_view identifier);

} // namespace platform
