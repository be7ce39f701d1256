#include "menubar/HalvexMenuExtraBase.h"
#include "platform/widgets/Menu.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <utility>

class Submenu final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        setTitle("0.42");
        menu_ = std::make_shared<platform::Menu>();
        menu_->addItem(
            "Refresh", [](platform::MenuItem&) {}, weak_from_this());
#include "blocks/Submenus, check marks, disabled items 1.inc"
        choose(*average_->items().front());
        return shared_from_this();
    }

#include "blocks/Submenus, check marks, disabled items 2.inc"

  private:
    std::shared_ptr<platform::Menu> average_;
};

HALVEX_MENU_EXTRA(Submenu)
