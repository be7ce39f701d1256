#include "platform/PanelService.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<PanelService> slot{"Panel"};

} // namespace

PanelWindow::~PanelWindow() = default;
PanelService::~PanelService() = default;

PanelService& panelService() {
    return slot.get();
}

template <>
PanelService* exchangeService<PanelService>(PanelService* service) {
    return slot.exchange(service);
}

} // namespace platform
