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

/// The calculator on the screen. Closing it hides it; what it shows stays.
class CalculatorWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit CalculatorWindow(const QLocale& locale = QLocale());

    /// Shows the window, in front of the others.
    void present();
    void copy() const;
    /// Takes the number on the clipboard; beeps when there is none.
    void paste();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addDisplay(QVBoxLayout& column);
    void addKeys(QVBoxLayout& column);
    void addActions();
    void press(Calculator::Key key);
    /// Shows what the calculator shows.
    void refresh();
    QString shownText() const;
    QString pendingText() const;

    const QLocale locale_;
    Calculator calculator_;
    QLabel* memory_ = nullptr;
    QLabel* pending_ = nullptr;
    FittingLabel* shown_ = nullptr;
    std::map<Calculator::Key, KeyButton*> keys_;
};

} // namespace apps
