#pragma once

#include "apps/menubar/BundleValidator.h"
#include "platform/DynamicLoader.h"
#include "platform/widgets/MenuExtra.h"

#include <memory>
#include <string>

namespace apps {

/// An item and its code. The item is destroyed before the code is unloaded.
struct LoadedItem {
    std::unique_ptr<platform::LoadedCode> code;
    std::shared_ptr<platform::MenuExtra> extra; ///< null if loading failed
    std::string reason;                         ///< why loading failed, human-readable
    explicit operator bool() const { return extra != nullptr; }
};

/// Loads the code of @p bundle, which must be valid, creates an instance of its principal class and
/// calls initWithBundle on it. Failures, including exceptions from the item, are logged with the
/// bundle's identifier and path. Main thread only.
LoadedItem loadItem(const ValidatedBundle& bundle);

} // namespace apps
