#pragma once

#include "apps/menubar/BundleJudge.h"
#include "platform/DynamicLoader.h"
#include "platform/widgets/MenuExtra.h"

#include <memory>
#include <string>

namespace apps {

/// An item and the code that it lives in, in the order in which they must go: the item first.
struct LoadedItem {
    std::string identifier;
    std::unique_ptr<platform::LoadedCode> code;
    std::shared_ptr<platform::MenuExtra> extra; ///< null when loading failed, which is then logged
    explicit operator bool() const { return extra != nullptr; }
};

/// Loads the code of a bundle that passed judgement, asks it for the principal class, and
/// initialises the item. Whatever goes wrong is logged with the bundle's identifier or path,
/// exceptions of the item's own included. Main thread.
LoadedItem loadItem(const JudgedBundle& judged);

} // namespace apps
