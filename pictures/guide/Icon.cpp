#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Graphics.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <utility>

class Icon final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        setTitle("0.42");
#include "blocks/An image beside the title 1.inc"
        return shared_from_this();
    }
};

HALVEX_MENU_EXTRA(Icon)
