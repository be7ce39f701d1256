#pragma once

#include "apps/halvex/Calculator.h"

#include <array>

class QKeyEvent;

namespace apps {

/// A key of the calculator's: what it says, what screen readers say, and where it is.
struct CalculatorKey {
    Calculator::Key key;
    const char* label;
    const char* name;
    int row, column;
    int columns = 1;
};

extern const std::array<CalculatorKey, 23> kCalculatorKeys;

/// The calculator's key for one of the keyboard; nothing for any other. Both the point and the
/// comma are the decimal sign.
std::optional<Calculator::Key> calculatorKey(const QKeyEvent& event);

} // namespace apps
