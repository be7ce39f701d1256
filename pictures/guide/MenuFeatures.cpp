#include "menubar/HalvexMenuExtraBase.h"
#include "platform/values/Event.h"
#include "platform/widgets/Menu.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <utility>

class MenuFeatures final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        setTitle("13:05");
        menu_ = std::make_shared<platform::Menu>();
#include "blocks/More in a menu 1.inc"
        return shared_from_this();
    }

  private:
    void load() {}
    void loadAll() {}
};

HALVEX_MENU_EXTRA(MenuFeatures)
