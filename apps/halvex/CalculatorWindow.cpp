#include "apps/halvex/CalculatorWindow.h"

#include "apps/halvex/CalculatorKeys.h"
#include "apps/halvex/FittingLabel.h"
#include "apps/halvex/KeyButton.h"
#include "apps/halvex/NumberText.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace apps {

using Fault = Calculator::Fault;
using Key = Calculator::Key;

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;
constexpr int kDisplayFontSize = 38;
constexpr std::array kOperators{Key::Divide, Key::Multiply, Key::Subtract, Key::Add};

bool isOperator(Key key) {
    return std::ranges::count(kOperators, key) > 0;
}

KeyButton::Kind kindOf(Key key) {
    if (isOperator(key) || key == Key::Equals)
        return KeyButton::Kind::Operator;
    return Calculator::isDigit(key) || key == Key::Point ? KeyButton::Kind::Digit
                                                         : KeyButton::Kind::Function;
}

QString labelOf(Key key) {
    const auto* const found = std::ranges::find(kCalculatorKeys, key, &CalculatorKey::key);
    return QString::fromUtf8(found->label);
}

} // namespace

CalculatorWindow::CalculatorWindow(const QLocale& locale) : locale_(locale) {
    setWindowTitle("Calculator");
    setLayoutDirection(Qt::LeftToRight); // numbers and keypads are the same in all languages
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kGap);
    addDisplay(*column);
    addKeys(*column);
    addActions();
    setFocusPolicy(Qt::StrongFocus);
    setFocus(); // no button has the focus until the user presses Tab
    refresh();
}

void CalculatorWindow::addDisplay(QVBoxLayout& column) {
    auto* const line = new QHBoxLayout;
    memory_ = new QLabel;
    pending_ = new QLabel;
    pending_->setAlignment(Qt::AlignRight);
    pending_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line->addWidget(memory_);
    line->addWidget(pending_, 1);
    column.addLayout(line);
    display_ = new FittingLabel(kDisplayFontSize);
    column.addWidget(display_);
}

void CalculatorWindow::addKeys(QVBoxLayout& column) {
    auto* const grid = new QGridLayout;
    grid->setSpacing(kGap);
    for (const CalculatorKey& key : kCalculatorKeys) {
        auto* const button = new KeyButton(QString::fromUtf8(key.label), kindOf(key.key));
        button->setAccessibleName(key.accessibleName);
        button->setCheckable(isOperator(key.key));
        connect(button, &KeyButton::clicked, this, [this, pressed = key.key] { press(pressed); });
        grid->addWidget(button, key.row, key.column, 1, key.columns);
        buttons_[key.key] = button;
    }
    buttons_.at(Key::Point)->setText(locale_.decimalPoint());
    column.addLayout(grid, 1);
}

void CalculatorWindow::addActions() {
    const auto add = [this](const QString& text, QKeySequence::StandardKey shortcut,
                            auto&& action) {
        auto* const added = new QAction(text, this);
        added->setShortcut(shortcut);
        connect(added, &QAction::triggered, this, action);
        addAction(added);
    };
    add("Copy", QKeySequence::Copy, [this] { copy(); });
    add("Paste", QKeySequence::Paste, [this] { paste(); });
    add("Close", QKeySequence::Close, [this] { close(); });
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void CalculatorWindow::copy() const {
    if (calculator_.fault() == Fault::None)
        QApplication::clipboard()->setText(formatForClipboard(calculator_.display(), locale_));
}

void CalculatorWindow::paste() {
    if (calculator_.enter(normalizeNumber(QApplication::clipboard()->text(), locale_)))
        refresh();
    else
        QApplication::beep();
}

void CalculatorWindow::keyPressEvent(QKeyEvent* event) {
    const auto key = calculatorKey(*event);
    if (!key)
        return QWidget::keyPressEvent(event);
    if (const auto button = buttons_.find(*key); button != buttons_.end())
        button->second->flash();
    press(*key);
}

void CalculatorWindow::press(Key key) {
    calculator_.press(key);
    refresh();
}

void CalculatorWindow::refresh() {
    display_->showText(displayText());
    pending_->setText(pendingText());
    memory_->setText(calculator_.hasMemory() ? "M" : "");
    buttons_.at(Key::Clear)->setText(calculator_.isTyping() ? "C" : "AC");
    for (const Key memory : {Key::MemoryClear, Key::MemoryRecall})
        buttons_.at(memory)->setEnabled(calculator_.hasMemory());
    const auto pending = calculator_.pending();
    for (const Key key : kOperators)
        buttons_.at(key)->setChecked(pending && pending->operation == key &&
                                     !calculator_.isTyping());
}

QString CalculatorWindow::displayText() const {
    switch (calculator_.fault()) {
    case Fault::DivisionByZero:
        return "Cannot divide by zero";
    case Fault::Overflow:
        return "Number too large";
    case Fault::None:
        break;
    }
    return formatForDisplay(calculator_.display(), locale_);
}

QString CalculatorWindow::pendingText() const {
    const auto pending = calculator_.pending();
    if (!pending)
        return {};
    return formatForDisplay(pending->left, locale_) + ' ' + labelOf(pending->operation);
}

} // namespace apps
