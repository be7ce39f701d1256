#pragma once

#include "platform/Bundle.h"
#include "platform/TrustedFile.h"

#include <memory>
#include <string>

namespace apps {

/// The result of validateBundle: a bundle whose code may be loaded, or the reason for refusing it.
struct ValidatedBundle {
    std::shared_ptr<platform::Bundle> bundle; ///< null if refused
    std::string identifier;
    std::shared_ptr<const platform::TrustedFile> code; ///< what was validated
    std::string principalClass;                        ///< the class to request from the code
    std::string reason; ///< why the bundle was refused, human-readable
    explicit operator bool() const { return bundle != nullptr; }
};

/// Validates the bundle in the folder @p path, which must have no symbolic links in it, without
/// loading its code. Info.plist and the code must be trusted files, see TrustedFile. Info.plist
/// must have an identifier, an executable, a principal class and the bar's ABI number; the
/// identifier and the version must not exceed 255 bytes each. The dynamic loader must not refuse
/// the code.
///
/// The code stays open, so what was validated is loaded even if the folder is replaced meanwhile.
/// The owner and root can still change the contents of the file; they could run code anyway.
ValidatedBundle validateBundle(const std::string& path);

} // namespace apps
