#pragma once

/// Points, origin at the bottom left, y growing upwards.
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

/// @p rect with its left and right edges moved inwards by @p dx and the other two by @p dy. What
/// negative numbers move outwards; a size may come out negative, and nothing is drawn there.
constexpr Rect insetRect(const Rect& rect, double dx, double dy) {
    return {{rect.origin.x + dx, rect.origin.y + dy},
            {rect.size.width - 2 * dx, rect.size.height - 2 * dy}};
}

} // namespace platform
