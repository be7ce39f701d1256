#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform::posix {

/// How often somebody looks for a temporary name that is free.
inline constexpr int kMaximumAttempts = 16;

/// How the temporary names for what is to be called @p name begin: ".halvex-<purpose>-<hash>-".
/// Names may be as long as a folder takes, so a hash of it stands there.
std::string temporaryPrefix(std::string_view purpose, std::string_view name);

/// @p prefix with something behind it that nobody else has; nothing when the system gives no random
/// numbers.
std::optional<std::string> temporaryName(std::string_view prefix);

} // namespace platform::posix
