#pragma once

#include "platform/qt/PanelControl.h"
#include "platform/widgets/Button.h"

#include <QAbstractButton>

#include <memory>
#include <string>

namespace platform::qt {

/// The widget of a panel's button. Main thread.
class PanelButton final : public QAbstractButton, public PanelControl {
    Q_OBJECT

  public:
    PanelButton(std::shared_ptr<Button> button, std::string owner, QWidget* parent);

    /// Sets whether Return in the panel clicks the button, which is then drawn filled.
    void setDefault(bool isDefault);
    QSize sizeHint() const override;

  protected:
    void applySettings() override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QColor textColor(const Button& button) const;
    void paintPlate(QPainter& painter, const Button& button) const;
    void paintTitle(QPainter& painter, const Button& button) const;

    bool isDefault_ = false;
};

} // namespace platform::qt
