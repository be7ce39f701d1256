#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/values/PropertyList.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Why a property list could not be read. Line and column (in characters) count from 1 and give the
/// position at which the error was detected. The line is 0 if the file could not be read.
struct PropertyListError {
    int line = 0;
    int column = 0;
    std::string reason;

    /// Returns "line L, column C: reason", or the reason alone for line 0.
    std::string text() const;
};

struct PropertyListResult {
    std::optional<PropertyList> value;
    PropertyListError error; ///< meaningful only if there is no value
    explicit operator bool() const { return value.has_value(); }
};

/// Reads and writes XML property lists. Operations never throw; if memory runs out, they fail.
/// Thread-safe.
class PropertyListService : NonCopyable {
  public:
    /// Copies at most @p size bytes into @p buffer. Returns the number of bytes, 0 at the end, or
    /// std::nullopt if reading failed.
    using ByteSource = std::function<std::optional<std::size_t>(char* buffer, std::size_t size)>;

    /// Lists that are nested more deeply are neither read nor written.
    static constexpr int kMaximumDepth = 512;
    /// The largest file that is read unless a caller sets a lower limit.
    static constexpr std::uint64_t kMaximumFileBytes = 1ULL << 29;

    virtual ~PropertyListService();

    /// Reads @p source to its end as one property list. Stops at the first error. Property lists in
    /// another format are rejected; the error names the format if it is binary or old-style text.
    virtual PropertyListResult parse(const ByteSource& source) const = 0;
    /// Returns the value as UTF-8 XML, or std::nullopt if XML cannot represent it: if a string
    /// contains invalid UTF-8 or a control character other than tab, line feed and carriage return,
    /// if the year of a date has more than nine digits, or if it is nested beyond kMaximumDepth.
    virtual std::optional<std::string> serialize(const PropertyList& value) const = 0;
    virtual std::optional<std::string> serialize(const PropertyList::Array& array) const = 0;

    /// Reads a property list in memory.
    PropertyListResult parse(std::string_view bytes) const;

    // Files. These use fileManager().

    /// Reads a regular file. Fails if it has more than @p maximumBytes bytes.
    PropertyListResult read(const std::string& path,
                            std::uint64_t maximumBytes = kMaximumFileBytes) const;
    /// Reads an array from a file. Returns std::nullopt if the file cannot be read or its root is
    /// not an array.
    std::optional<PropertyList::Array> readArray(const std::string& path) const;
    /// Writes an array with FileManager::writeFileAtomically. Returns false, and leaves the file
    /// unchanged, if that fails or XML cannot represent the array.
    bool writeArray(const std::string& path, const PropertyList::Array& array) const;
};

/// Returns the host's property list service. Aborts if the host has not installed one.
PropertyListService& propertyLists();
template <>
PropertyListService* exchangeService<PropertyListService>(PropertyListService* service);

} // namespace platform
