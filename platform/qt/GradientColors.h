#pragma once

#include "platform/qt/Pixel.h"
#include "platform/qt/Viewport.h"
#include "platform/values/Gradient.h"

#include <QPointF>

#include <optional>
#include <variant>
#include <vector>

namespace platform::qt {

/// Returns the colours of a gradient at pixels.
class GradientColors {
  public:
    /// Returns std::nullopt for a gradient that draws nothing. The viewport must be usable.
    static std::optional<GradientColors> create(const Gradient& gradient, const Viewport& viewport);

    /// Returns the premultiplied colour, with components of 0 to 1, at a point in pixels, or
    /// std::nullopt outside of a radial gradient's cone.
    std::optional<Pixel> at(QPointF pixel) const;

  private:
    struct Stop {
        double location;
        Pixel color;
    };

    GradientColors() = default;
    Pixel colorAt(double location) const;

    std::vector<Stop> stops_; // never empty
    Gradient shape_;
    QTransform toPoints_;
};

} // namespace platform::qt
