#include "platform/widgets/ViewBox.h"

#include "platform/base/Exception.h"
#include "platform/widgets/MenuExtra.h"

namespace platform {
namespace {

const Rect& frameOf(const std::shared_ptr<MenuExtraView>& view) {
    if (!view || view->container())
        throw Exception(kInvalidArgumentException,
                        "a panel needs a view that is not shown elsewhere");
    return view->frame();
}

} // namespace

ViewBox::ViewBox(std::shared_ptr<MenuExtraView> view)
    : Control(frameOf(view)), view_(std::move(view)) {}
ViewBox::~ViewBox() = default;

} // namespace platform
