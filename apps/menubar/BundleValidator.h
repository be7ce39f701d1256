#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

namespace apps {

/// The result of validateBundle: a bundle whose code may be loaded, or the reason for refusing it.
struct ValidatedBundle {
    std::shared_ptr<platform::Bundle> bundle; ///< null if refused
    std::string identifier;
    std::string executable;     ///< path of the code
    std::string principalClass; ///< the class to request from the code
    std::string reason;         ///< why the bundle was refused, human-readable
    explicit operator bool() const { return bundle != nullptr; }
};

/// Validates the bundle in the folder @p path without loading its code. Info.plist must have an
/// identifier, an executable, a principal class and the bar's ABI number; the identifier and the
/// version must not exceed 255 bytes each; the code must be for this processor; and the files must
/// belong to the user or root and be writable only by their owner and the user's own group.
ValidatedBundle validateBundle(const std::string& path);

} // namespace apps
