#pragma once

#include "platform/widgets/Button.h"

#include <QAbstractButton>

#include <memory>
#include <string>

namespace platform::qt {

/// A panel's button on the screen. Follows its settings; it lies where its frame says in a widget
/// whose lower left corner is the content view's. Main thread.
class PanelButton final : public QAbstractButton {
    Q_OBJECT

  public:
    /// @p owner is whose code a click runs.
    PanelButton(std::shared_ptr<Button> button, std::string owner, QWidget* parent);
    ~PanelButton() override;

    /// Takes the place again that the frame says.
    void follow();
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void paintPlate(QPainter& painter) const;
    void paintTitle(QPainter& painter) const;

    std::shared_ptr<Button> button_;
    std::string owner_;
};

} // namespace platform::qt
