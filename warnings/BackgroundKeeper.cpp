#include "warnings/BackgroundKeeper.h"

#include "platform/Log.h"
#include "platform/Workspace.h"
#include "platform/runtime/DetachedThread.h"
#include "prefs/HalvexPrefsTools.h"

namespace warnings {

void startBackgroundKeeper() {
    platform::detachThread([] {
        if (HalvexPrefsTools::findHalvexBGProcess(nullptr))
            return;
        const auto path = HalvexPrefsTools::getHalvexBGApplicationPath();
        if (!path || !platform::sharedWorkspace().openFile(*path))
            platform::logLine("warnings do not ring while the clock is turned off: cannot start %@",
                              path);
    });
}

} // namespace warnings
