#include "platform/Bundle.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "ui/HUDWindow.h"

/// On construction, adds the "i" button to a panel whose class lives in this bundle.
class PanelPlugIn final : public platform::MenuExtra {
  public:
    PanelPlugIn() {
        class PlugInPanel final : public HUDWindow {};
        const auto panel = std::make_shared<PlugInPanel>();
        panel->initWithContentRect({{}, {100, 100}}, 0, platform::BackingStore::Buffered, false);
        panel->addiButton({{}, {100, 100}}, {}, "");
    }
};

HALVEX_MENU_EXTRA(PanelPlugIn)
