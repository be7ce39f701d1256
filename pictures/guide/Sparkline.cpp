#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Graphics.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <cmath>
#include <utility>
#include <vector>

namespace {

class SparklineView final : public HalvexMenuViewBase {
  public:
    SparklineView() {
        for (int i = 0; i < 40; ++i)
            values_.push_back(0.5 + 0.3 * std::sin(i * 0.35) + 0.15 * std::sin(i * 1.3));
    }
    double width() const { return 2.0 * static_cast<double>(values_.size()); }

#include "blocks/Drawing a view 1.inc"

  private:
    std::vector<double> values_;
};

} // namespace

class Sparkline final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
            return nullptr;
        const auto view = std::make_shared<SparklineView>();
        view_ = view->initWithFrame({{}, view_->frame().size}, this);
        setView(view_);
        SetViewWidth(static_cast<float>(view->width()));
        return shared_from_this();
    }
};

HALVEX_MENU_EXTRA(Sparkline)
