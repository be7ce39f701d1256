#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "platform/widgets/MenuExtraPlugIn.h"

namespace {

/// The bar's own clock: weekday and time in the locale's format.
class SystemClock final : public extras::ClockItem {
    std::string preferredFormat() override { return extras::clock_format::shortDefault(); }
};

} // namespace

HALVEX_MENU_EXTRA(SystemClock)
