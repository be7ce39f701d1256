#pragma once

#include "platform/values/Color.h"
#include "platform/values/Geometry.h"

#include <variant>
#include <vector>

namespace platform {

/// A colour of a gradient.
struct GradientStop {
    double location = 0; ///< from 0, at the start of the gradient, to 1, at its end
    Color color;
    friend bool operator==(const GradientStop&, const GradientStop&) = default;
};

/// The colours of a gradient, ordered by location. Between two stops, premultiplied components are
/// interpolated, so a transparent stop does not show its colour. The first and the last colour
/// continue beyond their stops. Two stops at the same location make a sharp edge. A location is
/// limited to 0 to 1, and to no less than the one before; a stop whose location is NaN is ignored.
using GradientStops = std::vector<GradientStop>;

/// Colours that change along the line between two points. Without a distance between them, the
/// gradient draws nothing.
struct LinearGradient {
    Point start;
    Point end;
    GradientStops stops;
    friend bool operator==(const LinearGradient&, const LinearGradient&) = default;
};

/// Colours that change from one circle to another; the radius of either may be 0. If neither circle
/// contains the other, only the cone around both is drawn. If the circles are the same or a radius
/// is negative, the gradient draws nothing.
struct RadialGradient {
    Point startCenter;
    double startRadius = 0;
    Point endCenter;
    double endRadius = 0;
    GradientStops stops;
    friend bool operator==(const RadialGradient&, const RadialGradient&) = default;
};

/// A gradient. Points are in the coordinate system in which it is drawn. It draws nothing if it has
/// no stops, if a point or a radius is not finite, or if a stop has a pattern colour.
using Gradient = std::variant<LinearGradient, RadialGradient>;

} // namespace platform
