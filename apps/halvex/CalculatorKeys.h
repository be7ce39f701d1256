#pragma once

#include "apps/halvex/Calculator.h"

#include <array>

class QKeyEvent;

namespace apps {

/// A button of the calculator window and its place in the grid.
struct CalculatorKey {
    Calculator::Key key;
    const char* label;
    const char* accessibleName; ///< for screen readers
    int row, column;
    int columns = 1; ///< column span
};

extern const std::array<CalculatorKey, 23> kCalculatorKeys;

/// Returns the calculator key for a key press on the keyboard, or std::nullopt if the key is not
/// mapped. "." and "," both map to Key::Point.
std::optional<Calculator::Key> calculatorKey(const QKeyEvent& event);

} // namespace apps
