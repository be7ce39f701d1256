#include "platform/Bundle.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "ui/HUDWindow.h"

namespace {

class OwnPanel final : public HUDWindow {};

} // namespace

/// When it is made, adds the "i" button to a panel of its own class.
class PanelPlugIn final : public platform::MenuExtra {
  public:
    PanelPlugIn() {
        const auto panel = std::make_shared<OwnPanel>();
        panel->initWithContentRect({{}, {100, 100}}, 0, platform::BackingStore::Buffered, false);
        panel->addiButton({{}, {100, 100}}, {}, "");
    }
};

HALVEX_MENU_EXTRA(PanelPlugIn)
