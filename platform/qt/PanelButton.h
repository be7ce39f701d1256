#pragma once

#include "platform/widgets/Button.h"

#include <QAbstractButton>

#include <memory>
#include <string>

namespace platform::qt {

/// The widget of a panel's button. Applies changes of the button's settings immediately. The parent
/// widget's lower left corner must be that of the content view. Main thread.
class PanelButton final : public QAbstractButton {
    Q_OBJECT

  public:
    /// Clicks run the button's action under the identifier @p owner (see runGuarded).
    PanelButton(std::shared_ptr<Button> button, std::string owner, QWidget* parent);
    ~PanelButton() override;

    /// Applies the button's frame and texts. Call this when the parent's height changes.
    void applySettings();
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
