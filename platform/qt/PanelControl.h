#pragma once

#include "platform/widgets/Control.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

namespace platform::qt {

/// The widget of a control in a panel: the part that all kinds have in common. Applies changes of
/// the control's settings immediately. The lower left corner of the parent widget must be that of
/// the content view. Main thread only.
class PanelControl : public ControlDisplay {
  public:
    ~PanelControl() override;

    QWidget& widget() const { return widget_; }
    /// Returns whether this shows @p control.
    bool shows(const Control& control) const { return control_.get() == &control; }
    /// Returns whether the widget gets the keyboard focus when the panel is shown.
    virtual bool wantsFirstFocus() const { return false; }

    /// Sets the name for screen readers again, because the label of the control has changed.
    void updateAccessibleName();
    /// Moves the widget to the control's frame. Call this when the parent's height changes.
    void place();
    /// Stops referring to the control, whose handlers are not called afterwards.
    void detach();

    void controlDidChange() final;
    void takeFocus() override;

  protected:
    PanelControl(QWidget& widget, std::shared_ptr<Control> control, std::string owner);

    /// Returns the control, or null after detach(). @tparam T its class
    template <class T>
    std::shared_ptr<T> control() const {
        return std::static_pointer_cast<T>(control_);
    }
    /// Runs a handler of the control, guarded with the owner's identifier. It may remove the
    /// control or destroy the panel, and then the widget is deleted later.
    void run(const std::function<void()>& code) const;

    /// Applies what is special to this kind of control. Not called after detach().
    virtual void applySettings() = 0;
    virtual void willDetach() {}

  private:
    /// Returns the control's name for screen readers, which may be the text of its label.
    QString nameForScreenReaders() const;

    QWidget& widget_;
    std::shared_ptr<Control> control_;
    const std::string owner_;
};

/// Creates the widget of a control, as a child of @p parent. Its handlers run under the identifier
/// @p owner (see runGuarded). Returns null for a class of controls that is not known.
PanelControl* makePanelControl(const std::shared_ptr<Control>& control, const std::string& owner,
                               QWidget* parent);

} // namespace platform::qt
