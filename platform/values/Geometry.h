#pragma once

/// Coordinates are in points. The origin is at the bottom left and y increases upwards.
namespace platform {

struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    Point origin;
    Size size;
    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Returns @p rect with its left and right edges moved inwards by @p dx and its other two by @p dy,
/// or outwards by negative distances. The size may become negative, in which case nothing is drawn.
constexpr Rect insetRect(const Rect& rect, double dx, double dy) {
    return {{rect.origin.x + dx, rect.origin.y + dy},
            {rect.size.width - 2 * dx, rect.size.height - 2 * dy}};
}

} // namespace platform
