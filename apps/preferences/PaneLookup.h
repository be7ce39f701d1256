#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

namespace apps {

/// The result of looking for a preference pane.
struct PaneLookup {
    std::shared_ptr<platform::Bundle> pane; ///< null if there is an error
    std::string request;                    ///< the path or identifier that was looked for
    std::string error;                      ///< user-visible, with what to do about it
};

/// Opens the pane at @p path. Fails unless the name ends in ".prefPane" and the Info.plist is
/// readable and has an identifier.
PaneLookup findPaneAtPath(const std::string& path);

/// Finds the pane with a bundle identifier: @p open if it has the identifier, or else the first one
/// by name in /Library/PreferencePanes and then in ~/Library/PreferencePanes. @p open may be null.
PaneLookup findPaneWithIdentifier(const std::string& identifier,
                                  const std::shared_ptr<platform::Bundle>& open);

/// Returns the pane's CFBundleName, or else its folder's name without the extension.
std::string paneName(const platform::Bundle& pane);

} // namespace apps
