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

/// Why bytes are no property list. Lines and columns (in characters) count from 1 and say where
/// the fault was noticed; line 0 when the file itself could not be read.
struct PropertyListError {
    int line = 0;
    int column = 0;
    std::string reason;

    /// Returns "line L, column C: reason", or the reason alone for line 0.
    std::string text() const;
};

struct PropertyListResult {
    std::optional<PropertyList> value;
    PropertyListError error; ///< of interest without a value only
    explicit operator bool() const { return value.has_value(); }
};

/// Reads and writes property lists. No operation throws (but for want of memory). Safe from any
/// thread.
class PropertyListService : NonCopyable {
  public:
    /// Puts the next bytes, at most @p size, into @p buffer and gives their number: 0 at the end,
    /// nothing when reading failed.
    using ByteSource = std::function<std::optional<std::size_t>(char* buffer, std::size_t size)>;

    /// Deeper nesting is neither read nor written.
    static constexpr int kMaximumDepth = 512;
    /// Larger files are not read.
    static constexpr std::uint64_t kMaximumFileBytes = 1ULL << 29;

    virtual ~PropertyListService();

    /// Reads one XML property list to the end of @p source, piece by piece. The first fault ends
    /// it.
    virtual PropertyListResult parse(const ByteSource& source) const = 0;
    /// The value as XML, UTF-8. Nothing when XML cannot hold it: a string with a control character
    /// (but for tab, line feed and carriage return) or invalid UTF-8, a date of a year beyond nine
    /// digits, nesting beyond kMaximumDepth.
    virtual std::optional<std::string> serialize(const PropertyList& value) const = 0;
    virtual std::optional<std::string> serialize(const PropertyList::Array& array) const = 0;

    /// Reads bytes in memory.
    PropertyListResult parse(std::string_view bytes) const;

    // Files, by way of fileManager().

    /// Reads a regular file of at most kMaximumFileBytes.
    PropertyListResult read(const std::string& path) const;
    /// The array in a file; nothing when the file cannot be read or its root is no array.
    std::optional<PropertyList::Array> readArray(const std::string& path) const;
    /// Replaces the file by one with @p array, as FileManager::writeFileAtomically does. False when
    /// that fails or XML cannot hold the array; the file is then as before.
    bool writeArray(const std::string& path, const PropertyList::Array& array) const;
};

/// The process's reader and writer. A host installs one; there is no default.
PropertyListService& propertyLists();
template <>
PropertyListService* exchangeService<PropertyListService>(PropertyListService* service);

} // namespace platform
