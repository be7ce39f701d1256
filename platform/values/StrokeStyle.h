#pragma once

#include <vector>

namespace platform {

/// The ends of open lines and of dashes. The values are the platform's own.
enum class LineCap : int { Butt = 0, Round = 1, Square = 2 };

/// The corners of lines. The values are the platform's own.
enum class LineJoin : int { Miter = 0, Round = 1, Bevel = 2 };

/// How a path is stroked. Lengths are in points of the coordinate system in which it is drawn.
struct StrokeStyle {
    double width = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    /// A mitered corner that is longer than this multiple of the width is bevelled.
    double miterLimit = 10;
    /// The lengths of dashes and of the gaps after them, in turn, repeated along each subpath. The
    /// line is solid if this is empty, if a length is negative or not finite, if all are 0, or if
    /// there would be more than 10,000 repetitions.
    std::vector<double> dashes{};
    /// Where in the pattern of dashes a subpath starts.
    double dashPhase = 0;

    friend bool operator==(const StrokeStyle&, const StrokeStyle&) = default;
};

} // namespace platform
