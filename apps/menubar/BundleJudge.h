#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

namespace apps {

/// A bundle that the bar may load code from, or why it may not.
struct JudgedBundle {
    std::shared_ptr<platform::Bundle> bundle; ///< null when refused
    std::string identifier;
    std::string executable;     ///< path of the code
    std::string principalClass; ///< what to ask the code for
    std::string reason;         ///< why it was refused, for people
    explicit operator bool() const { return bundle != nullptr; }
};

/// Looks at the bundle in the folder @p path without loading anything of it: an identifier, a
/// principal class and the right ABI number in Info.plist; code for this processor; folders and
/// files that belong to the user or root and that nobody else can write. Never throws.
JudgedBundle judgeBundle(const std::string& path);

} // namespace apps
