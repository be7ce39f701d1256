#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "platform/widgets/MenuExtraPlugIn.h"

namespace {

/// The bar's own clock: weekday and time, as the locale writes them.
class SystemClock final : public ClockItem {
    std::string preferredFormat() override { return clock_format::shortDefault(); }
};

} // namespace

HALVEX_MENU_EXTRA(SystemClock)
