#include "platform/widgets/MenuExtraPlugIn.h"

namespace {

/// An empty item of width 0. While it is loaded, the bar admits third-party items.
class MenuCracker final : public platform::MenuExtra {};

} // namespace

HALVEX_MENU_EXTRA(MenuCracker)
