#pragma once

#include "platform/PanelService.h"
#include "platform/widgets/Panel.h"

namespace platform::qt {

/// Shows each panel in a PanelWidget. Main thread.
class QtPanelService final : public PanelService {
  public:
    /// Returns null, and logs "cannot create a panel: the program has no QApplication", in programs
    /// without one.
    std::unique_ptr<PanelWindow> makeWindow(Panel& panel) override;
};

} // namespace platform::qt
