#pragma once

#include "platform/values/TextAttributes.h"
#include "platform/widgets/Control.h"

#include <memory>
#include <string>

namespace platform {

/// Text in a panel that the user cannot edit. It is shown in the panel's text colour, vertically
/// centred in its frame. The mouse acts on the background behind it. Main thread only.
class Label final : public Control {
  public:
    Label(const Rect& frame, std::string text);
    ~Label() override;

    const std::string& text() const { return text_; }
    TextAlignment alignment() const { return alignment_; }
    ControlSize controlSize() const { return size_; }
    bool wraps() const { return wraps_; }
    std::shared_ptr<Control> namedControl() const { return named_.lock(); }

    void setText(std::string text) { change(text_, std::move(text)); }
    void setAlignment(TextAlignment alignment) { change(alignment_, alignment); }
    /// Sets the size of the text. The default is ControlSize::Regular.
    void setControlSize(ControlSize size) { change(size_, size); }
    /// Sets whether the text continues on further lines, which start at the top of the frame. The
    /// default is a single line. Text that does not fit is cut off.
    void setWraps(bool wraps) { change(wraps_, wraps); }
    /// Makes the text the name of @p control for screen readers, unless the control has a label of
    /// its own. The control, which is held weakly, must be in the same panel as the label.
    void setNamedControl(std::weak_ptr<Control> control) { change(named_, std::move(control)); }

  private:
    std::string text_;
    TextAlignment alignment_ = TextAlignment::Left;
    ControlSize size_ = ControlSize::Regular;
    bool wraps_ = false;
    std::weak_ptr<Control> named_;
};

} // namespace platform
