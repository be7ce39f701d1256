#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

namespace apps {

/// A preference pane that was asked for, or why it cannot be shown.
struct PaneChoice {
    std::shared_ptr<platform::Bundle> pane; ///< null when there is a reason
    std::string wanted;                     ///< the path or the identifier
    std::string reason;                     ///< for people
};

/// The pane in a folder: its name ends in ".prefPane", and its Info.plist gives an identifier.
PaneChoice paneAtPath(const std::string& path);

/// The pane with an identifier: @p open when it has it, else the first in the folders of panes for
/// all users and for this one. Null for @p open when none is.
PaneChoice paneWithIdentifier(const std::string& identifier,
                              const std::shared_ptr<platform::Bundle>& open);

/// CFBundleName; the folder's name without its extension when there is none.
std::string paneName(const platform::Bundle& pane);

} // namespace apps
