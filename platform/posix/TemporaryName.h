#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Names of files and folders that are being written, moved or removed.
namespace platform::posix {

/// Returns ".halvex-<hash of @p finalName>-", the start of each temporary name. It contains a hash
/// because @p finalName may already have the maximum length of a name.
std::string temporaryPrefix(std::string_view finalName);

/// Returns @p prefix followed by a random number, or std::nullopt if the system provides none.
std::optional<std::string> temporaryName(std::string_view prefix);

} // namespace platform::posix
