#pragma once

#include "platform/qt/PanelControl.h"
#include "platform/widgets/Label.h"

#include <QLabel>

namespace platform::qt {

/// The widget of a label. The mouse acts on what is behind it. Main thread only.
class PanelLabel final : public QLabel, public PanelControl {
    Q_OBJECT

  public:
    PanelLabel(std::shared_ptr<Label> label, std::string owner, QWidget* parent);

    /// Returns the text. That of QLabel has its ampersands doubled.
    QString plainText() const;

  protected:
    void applySettings() override;

  private:
    PanelControl* displayOf(const Control* control) const;
};

} // namespace platform::qt
