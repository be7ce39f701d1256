#include "apps/menubar/ItemLoader.h"

#include "platform/Log.h"
#include "platform/runtime/Guard.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <string>
#include <utility>

using namespace platform;

namespace apps {
namespace {

LoadedItem failed(const ValidatedBundle& bundle, std::string reason) {
    logLine("cannot load menu extra %@ at %@: %@", bundle.identifier, bundle.bundle->bundlePath(),
            reason);
    LoadedItem item;
    item.reason = std::move(reason);
    return item;
}

} // namespace

LoadedItem loadItem(const ValidatedBundle& bundle) {
    LoadedItem item;
    std::string reason;
    item.code = dynamicLoader().load(bundle.code, reason);
    if (!item.code)
        return failed(bundle, reason);
    const auto createExtra =
        reinterpret_cast<MenuExtraEntryPoint>(item.code->symbol(kMenuExtraEntryPoint));
    if (!createExtra)
        return failed(bundle, std::string("its code has no entry point ") + kMenuExtraEntryPoint);

    reason = "its code has no class " + bundle.principalClass;
    const bool returned = runGuarded(bundle.identifier, [&] {
        const std::shared_ptr<MenuExtra> created(createExtra(bundle.principalClass.c_str()));
        if (!created)
            return;
        reason = "initWithBundle returned null";
        item.extra = created->initWithBundle(bundle.bundle);
        if (item.extra && !item.extra->view()) {
            reason = "it has no view: its initWithBundle must call the base class's";
            item.extra = nullptr;
        }
    });
    if (!returned)
        reason = "it raised an exception";
    return item ? std::move(item) : failed(bundle, reason);
}

} // namespace apps
