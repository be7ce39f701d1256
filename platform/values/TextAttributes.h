#pragma once

#include "platform/values/Color.h"
#include "platform/values/Geometry.h"

#include <optional>
#include <string>

namespace platform {

/// A blurred shadow. The offset is in points, y upwards; the blur radius is twice the standard
/// deviation of the Gaussian that it stands for.
struct Shadow {
    Size offset;
    double blurRadius = 0;
    Color color{0, 0, 0, 1.0 / 3.0}; ///< the platform's default shadow colour
    friend bool operator==(const Shadow&, const Shadow&) = default;
};

/// A typeface by family. An empty family, and a size of 0, mean the menu bar's own font and size.
struct Font {
    std::string family;
    double size = 0; ///< points
    bool bold = false;
    friend bool operator==(const Font&, const Font&) = default;
};

/// How large a control is; the numbers are the platform's own.
enum class ControlSize : int { Regular = 0, Small = 1, Mini = 2 };

/// The size in points of the text of a control.
double systemFontSize(ControlSize size);

enum class TextAlignment : int { Left = 0, Right = 1, Center = 2 };

/// What becomes of text that is too wide for its place.
enum class LineBreakMode : int {
    Clipping = 2,       ///< it is cut at the edge
    TruncatingTail = 4, ///< its end gives way to an ellipsis
};

/// How text lies in a rectangle.
struct ParagraphStyle {
    TextAlignment alignment = TextAlignment::Left;
    LineBreakMode lineBreakMode = LineBreakMode::Clipping;
    friend bool operator==(const ParagraphStyle&, const ParagraphStyle&) = default;
};

/// How a run of text looks. What is not set takes the platform's default: the menu bar's font, and
/// the text colour of the place that it is drawn in.
struct TextAttributes {
    std::optional<Font> font{};
    std::optional<Color> foregroundColor{};
    std::optional<Shadow> shadow{};
    std::optional<ParagraphStyle> paragraphStyle{};
    friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

} // namespace platform
