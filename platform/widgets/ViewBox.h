#pragma once

#include "platform/widgets/Control.h"

#include <memory>

namespace platform {

class MenuExtraView;

/// Shows a view of your own in a panel. The view draws itself, receives mouse, wheel and key events
/// and drops, and describes itself to screen readers. Its size follows the frame of the control,
/// and the frame follows if the view changes its own size. Main thread only.
class ViewBox final : public Control {
  public:
    /// Shows @p view at its frame. @throws Exception (NSInvalidArgumentException) if it is null or
    /// already shown in a menu or a panel.
    explicit ViewBox(std::shared_ptr<MenuExtraView> view);
    ~ViewBox() override;

    const std::shared_ptr<MenuExtraView>& view() const { return view_; }
    /// Returns whether the keyboard focus can move to the view. The default is true.
    bool acceptsFocus() const { return acceptsFocus_; }
    void setAcceptsFocus(bool accepts) { change(acceptsFocus_, accepts); }

  private:
    std::shared_ptr<MenuExtraView> view_;
    bool acceptsFocus_ = true;
};

} // namespace platform
