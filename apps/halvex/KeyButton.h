#pragma once

#include <QAbstractButton>

namespace apps {

/// A button drawn as a rounded rectangle in the palette's colours. While it is checked, the colours
/// of its background and its label are swapped.
class KeyButton final : public QAbstractButton {
    Q_OBJECT

  public:
    enum class Kind { Digit, Function, Operator };

    KeyButton(const QString& label, Kind kind);

    /// Draws the button as pressed for about 0.1 s, without clicking it.
    void flash();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    QColor backgroundColour() const;
    QColor labelColour() const;

    const Kind kind_;
};

} // namespace apps
