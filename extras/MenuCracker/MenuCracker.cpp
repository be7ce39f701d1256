#include "platform/widgets/MenuExtraPlugIn.h"

namespace {

/// An item that shows nothing, takes no room and has no menu. That it is loaded is all there is to
/// it: the bar then admits the items of others.
class MenuCracker final : public platform::MenuExtra {};

} // namespace

HALVEX_MENU_EXTRA(MenuCracker)
