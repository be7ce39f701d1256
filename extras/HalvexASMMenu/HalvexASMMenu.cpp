#include "extras/shared/Texts.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <memory>

using namespace platform;

namespace {

class HalvexASMMenu final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(bundle))
            return nullptr;
        extras::bindTexts(*bundle);
        return shared_from_this();
    }
};

} // namespace

HALVEX_MENU_EXTRA(HalvexASMMenu)
