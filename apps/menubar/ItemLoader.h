#pragma once

#include "apps/menubar/BundleValidator.h"
#include "platform/DynamicLoader.h"
#include "platform/widgets/MenuExtra.h"

#include <memory>

namespace apps {

/// An item and the code it lives in. The item is destroyed before its code.
struct LoadedItem {
    std::unique_ptr<platform::LoadedCode> code;
    std::shared_ptr<platform::MenuExtra> extra; ///< null if loading failed
    explicit operator bool() const { return extra != nullptr; }
};

/// Loads the code of @p bundle, which must be valid, creates an instance of its principal class and
/// calls initWithBundle on it. A failure, which includes an exception from the item, is logged with
/// the bundle's identifier and path. Main thread only.
LoadedItem loadItem(const ValidatedBundle& bundle);

} // namespace apps
