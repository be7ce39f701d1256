#pragma once

#include "platform/qt/PanelControl.h"
#include "platform/widgets/TextField.h"

#include <QLineEdit>

namespace platform::qt {

/// The widget of a text field. Main thread only.
class PanelTextField final : public QLineEdit, public PanelControl {
    Q_OBJECT

  public:
    PanelTextField(std::shared_ptr<TextField> field, std::string owner, QWidget* parent);

    bool wantsFirstFocus() const override { return isEnabled() && !isHidden(); }
    void takeFocus() override;

  protected:
    void applySettings() override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void commit();
    bool step(const QKeyEvent& event);
    void commitIfChanged();
};

} // namespace platform::qt
