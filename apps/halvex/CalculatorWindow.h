#pragma once

#include "apps/halvex/Calculator.h"

#include <QLocale>
#include <QWidget>

#include <map>

class QLabel;
class QVBoxLayout;

namespace apps {

class FittingLabel;
class KeyButton;

/// The window of the calculator. Closing hides it and keeps the calculator's state.
class CalculatorWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit CalculatorWindow(const QLocale& locale = QLocale());

    /// Copies the displayed number to the clipboard. Does nothing while there is a fault.
    void copy() const;
    /// Enters the number on the clipboard. Beeps if the clipboard does not contain one.
    void paste();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addDisplay(QVBoxLayout& column);
    void addKeys(QVBoxLayout& column);
    void addActions();
    void press(Calculator::Key key);
    /// Updates the widgets from the calculator.
    void refresh();
    QString displayText() const;
    QString pendingText() const;

    const QLocale locale_;
    Calculator calculator_;
    QLabel* memory_ = nullptr;
    QLabel* pending_ = nullptr;
    FittingLabel* display_ = nullptr;
    std::map<Calculator::Key, KeyButton*> buttons_;
};

} // namespace apps
