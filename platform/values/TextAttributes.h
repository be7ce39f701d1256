#pragma once

#include "platform/values/Color.h"
#include "platform/values/Geometry.h"

#include <optional>
#include <string>

namespace platform {

/// A blurred shadow.
struct Shadow {
    Size offset;                     ///< points
    double blurRadius = 0;           ///< points; twice the standard deviation of the Gaussian blur
    Color color{0, 0, 0, 1.0 / 3.0}; ///< the platform's default shadow colour
    friend bool operator==(const Shadow&, const Shadow&) = default;
};

/// A font.
struct Font {
    std::string family; ///< empty for the font of the menu bar
    double size = 0;    ///< points; 0 for the size of the menu bar's font
    bool bold = false;
    friend bool operator==(const Font&, const Font&) = default;
};

/// The size of a control. The values are the platform's own.
enum class ControlSize : int { Regular = 0, Small = 1, Mini = 2 };

/// Returns the font size of a control's text, in points.
double systemFontSize(ControlSize size);

/// The values are the platform's own.
enum class TextAlignment : int { Left = 0, Right = 1, Center = 2 };

/// What happens to text that is too wide for its rectangle. The values are the platform's own.
enum class LineBreakMode : int {
    Clipping = 2,       ///< clipped at the edge
    TruncatingTail = 4, ///< truncated, with an ellipsis at the end
};

/// The layout of text in a rectangle.
struct ParagraphStyle {
    TextAlignment alignment = TextAlignment::Left;
    LineBreakMode lineBreakMode = LineBreakMode::Clipping;
    friend bool operator==(const ParagraphStyle&, const ParagraphStyle&) = default;
};

/// The appearance of a run of text. Unset attributes have defaults: the font of the menu bar and
/// the default text colour of the graphics context.
struct TextAttributes {
    std::optional<Font> font{};
    std::optional<Color> foregroundColor{};
    std::optional<Shadow> shadow{};
    std::optional<ParagraphStyle> paragraphStyle{};
    friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

} // namespace platform
