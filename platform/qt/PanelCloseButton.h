#pragma once

#include <QAbstractButton>

namespace platform::qt {

/// The close control in the title bar of a panel: a disc with a cross, brighter under the mouse.
/// It does not take the keyboard focus, because Escape closes the panel too. Main thread.
class PanelCloseButton final : public QAbstractButton {
    Q_OBJECT

  public:
    explicit PanelCloseButton(QWidget* parent);

    /// Moves the control into the left end of a title bar whose top left corner is @p corner.
    void placeAt(QPoint corner);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace platform::qt
