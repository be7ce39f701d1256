#pragma once

#include "platform/PanelService.h"
#include "platform/widgets/Panel.h"

namespace platform::qt {

/// Panels as windows of Qt's, see PanelWidget. Main thread, with a QApplication.
class QtPanels final : public PanelService {
  public:
    std::unique_ptr<PanelWindow> makeWindow(Panel& panel) override;
};

} // namespace platform::qt
