#pragma once

#include <QAbstractButton>

namespace apps {

/// A key: a rounded field with a label, in the palette's colours. A checked one is inverted.
class KeyButton final : public QAbstractButton {
    Q_OBJECT

  public:
    enum class Kind { Digit, Function, Operator };

    KeyButton(const QString& label, Kind kind);

    /// Shows for a moment that the key was pressed on the keyboard.
    void flash();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    QColor ground() const;

    const Kind kind_;
};

} // namespace apps
