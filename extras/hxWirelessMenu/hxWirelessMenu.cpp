#include "extras/hxWirelessMenu/WirelessMenu.h"
#include "platform/widgets/MenuExtraPlugIn.h"

using extras::WirelessMenu;

HALVEX_MENU_EXTRA(WirelessMenu)
