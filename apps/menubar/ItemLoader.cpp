#include "apps/menubar/ItemLoader.h"

#include "platform/Log.h"
#include "platform/runtime/Guard.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <utility>

using namespace platform;

namespace apps {
namespace {

LoadedItem failed(const JudgedBundle& judged, const std::string& reason) {
    logLine("menu extra %@ at %@ cannot be loaded: %@", judged.identifier,
            judged.bundle->bundlePath(), reason);
    return {};
}

} // namespace

LoadedItem loadItem(const JudgedBundle& judged) {
    LoadedItem item;
    item.identifier = judged.identifier;
    std::string reason;
    item.code = dynamicLoader().load(judged.executable, reason);
    if (!item.code)
        return failed(judged, reason);
    const auto makeExtra =
        reinterpret_cast<MenuExtraEntryPoint>(item.code->symbol(kMenuExtraEntryPoint));
    if (!makeExtra)
        return failed(judged, std::string("its code has no entry point ") + kMenuExtraEntryPoint);

    reason = "its code has no class " + judged.principalClass;
    const bool calm = runGuarded(judged.identifier, [&] {
        const std::shared_ptr<MenuExtra> made(makeExtra(judged.principalClass.c_str()));
        if (!made)
            return;
        reason = "initWithBundle gave nothing";
        item.extra = made->initWithBundle(judged.bundle);
        if (item.extra && !item.extra->view()) {
            reason = "it has no view: initWithBundle must call the one that it overrides";
            item.extra = nullptr;
        }
    });
    if (!calm)
        reason = "it raised an exception";
    return item ? std::move(item) : failed(judged, reason);
}

} // namespace apps
