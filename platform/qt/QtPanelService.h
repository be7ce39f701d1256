#pragma once

#include "platform/PanelService.h"
#include "platform/widgets/Panel.h"

namespace platform::qt {

/// Shows each panel in a PanelWidget. Main thread.
class QtPanelService final : public PanelService {
  public:
    /// Without a QApplication, returns null and logs "cannot create a panel: the program
    /// has no QApplication".
    std::unique_ptr<PanelWindow> makeWindow(Panel& panel) override;
};

} // namespace platform::qt
