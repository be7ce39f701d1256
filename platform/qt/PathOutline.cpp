#include "platform/qt/PathOutline.h"

#include <QPainterPathStroker>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace platform::qt {
namespace {

/// The distance between a curve and its polyline, in pixels.
constexpr double kTolerance = 1.0 / 64;
/// Pixels; coordinates beyond this are moved here, so that arithmetic does not overflow.
constexpr double kFar = 1e12;
constexpr double kMostLines = 1024;
constexpr int kLinesOfSmallArc = 24;

/// Pixels; what a subpath without length is extended by, because QPainterPath would draw no caps.
constexpr double kDotLength = 1.0 / 1024;

/// Indexed by LineCap and LineJoin.
constexpr std::array kCaps = {Qt::FlatCap, Qt::RoundCap, Qt::SquareCap};
constexpr std::array kJoins = {Qt::SvgMiterJoin, Qt::RoundJoin, Qt::BevelJoin};

template <class Enum, class Table>
auto entry(const Table& table, Enum value) {
    const auto index = static_cast<std::size_t>(value);
    return table[index < table.size() ? index : 0];
}

/// Returns how many lines approximate a curve. @p scale is in pixels per unit of the curve.
int lineCount(const CubicCurve& curve, double scale) {
    const auto bend = [](Point one, Point middle, Point other) {
        return std::hypot(one.x - 2 * middle.x + other.x, one.y - 2 * middle.y + other.y);
    };
    const double largest = std::max(bend(curve.start, curve.firstControl, curve.secondControl),
                                    bend(curve.firstControl, curve.secondControl, curve.end));
    // The second derivative is at most 6 * largest.
    const double count = std::ceil(std::sqrt(6 * largest * scale / (8 * kTolerance)));
    return static_cast<int>(count < kMostLines ? std::max(count, 1.0) : kMostLines);
}

enum class Purpose {
    Fill, ///< curves become lines: QPainter's own are off by a quarter of a pixel, which is visible
          ///< in small corners
    Stroke, ///< curves remain: the pieces of a polyline's stroke overlap, which shows at the edge
};

/// Converts a path.
template <class Map>
class OutlineBuilder {
  public:
    /// @p map converts points to the coordinates of the result. @p scale is in pixels per point.
    /// Subpaths without length become lines of length @p dotLength in the result.
    OutlineBuilder(Map map, double scale, Purpose purpose, double dotLength = 0)
        : map_(map), scale_(scale), purpose_(purpose), dotLength_(dotLength) {}

    QPainterPath convert(const BezierPath& path) {
        std::for_each(path.elements().begin(), path.elements().end(),
                      [this](const BezierPath::Element& element) { append(element); });
        endSubpath();
        return outline_;
    }

  private:
    void append(const BezierPath::Element& element) {
        hasSteps_ = hasSteps_ || element.step != BezierPath::Step::MoveTo;
        switch (element.step) {
        case BezierPath::Step::MoveTo:
            endSubpath();
            outline_.moveTo(mapped(element.point));
            start_ = current_ = element.point;
            return;
        case BezierPath::Step::LineTo:
            return lineTo(element.point);
        case BezierPath::Step::CurveTo: {
            const CubicCurve curve{current_, element.firstControl, element.secondControl,
                                   element.point};
            return appendCurve(curve, lineCount(curve, scale_));
        }
        case BezierPath::Step::ArcFromPoint: {
            const auto arc = cornerArc(current_, element.point, element.toPoint, element.radius);
            lineTo(arc ? arc->start : element.point);
            if (arc)
                appendCurve(*arc, std::max(kLinesOfSmallArc, lineCount(*arc, scale_)));
            return;
        }
        case BezierPath::Step::Close:
            outline_.closeSubpath();
            current_ = start_;
        }
    }

    QPointF mapped(Point point) const {
        const QPointF at = map_(point);
        return {std::clamp(at.x(), -kFar, kFar), std::clamp(at.y(), -kFar, kFar)};
    }

    void endSubpath() {
        const int count = outline_.elementCount();
        if (hasSteps_ && count > 0 && outline_.elementAt(count - 1).isMoveTo() && dotLength_ > 0)
            outline_.lineTo(outline_.currentPosition() + QPointF(dotLength_, 0));
        hasSteps_ = false;
    }

    void lineTo(Point point) {
        outline_.lineTo(mapped(point));
        current_ = point;
    }

    void appendCurve(const CubicCurve& curve, int lines) {
        if (purpose_ == Purpose::Stroke)
            outline_.cubicTo(mapped(curve.firstControl), mapped(curve.secondControl),
                             mapped(curve.end));
        for (int i = 1; i <= lines && purpose_ == Purpose::Fill; ++i)
            outline_.lineTo(mapped(curve.at(static_cast<double>(i) / lines)));
        current_ = curve.end;
    }

    Map map_;
    double scale_;
    Purpose purpose_;
    double dotLength_;
    bool hasSteps_ = false; ///< whether the subpath has more than its start
    QPainterPath outline_;
    Point start_;
    Point current_;
};

/// Replaces the curves of round caps and joins.
QPainterPath withoutCurves(const QPainterPath& path) {
    QPainterPath lines;
    for (int i = 0; i < path.elementCount(); ++i) {
        const auto at = [&](int index) {
            const QPainterPath::Element element = path.elementAt(index);
            return Point{element.x, element.y};
        };
        if (path.elementAt(i).isMoveTo()) {
            lines.moveTo(path.elementAt(i));
        } else if (path.elementAt(i).isLineTo()) {
            lines.lineTo(path.elementAt(i));
        } else {
            const CubicCurve curve{at(i - 1), at(i), at(i + 1), at(i + 2)};
            const int count = lineCount(curve, 1);
            for (int k = 1; k <= count; ++k) {
                const Point point = curve.at(static_cast<double>(k) / count);
                lines.lineTo(point.x, point.y);
            }
            i += 2;
        }
    }
    return lines;
}

/// Returns the pattern of dashes in the units of QPainterPathStroker, which are line widths, or an
/// empty list for a solid line. @p path and @p scale are in pixels.
QList<qreal> dashPattern(const StrokeStyle& style, const QPainterPath& path, double scale) {
    constexpr double kMostRepetitions = 10'000;
    const auto isLength = [](double length) { return std::isfinite(length) && length >= 0; };
    const double sum = std::accumulate(style.dashes.begin(), style.dashes.end(), 0.0);
    if (!std::all_of(style.dashes.begin(), style.dashes.end(), isLength) ||
        !(sum * scale * kMostRepetitions >= path.length()) || sum == 0)
        return {};
    QList<qreal> pattern;
    const double shortest = style.cap == LineCap::Butt ? 0 : kDotLength / scale;
    const std::size_t count = style.dashes.size() * (1 + style.dashes.size() % 2);
    for (std::size_t i = 0; i < count; ++i) {
        const double length = style.dashes[i % style.dashes.size()];
        pattern.push_back((i % 2 == 0 ? std::max(length, shortest) : length) / style.width);
    }
    return pattern;
}

} // namespace

QPainterPath pathOutline(const BezierPath& path, const Viewport& viewport) {
    const QSizeF unit = viewport.pixelsPerUnit();
    OutlineBuilder builder([&](Point point) { return viewport.toPixels(point); },
                           std::max(unit.width(), unit.height()), Purpose::Fill);
    QPainterPath outline = builder.convert(path);
    outline.setFillRule(path.windingRule() == WindingRule::EvenOdd ? Qt::OddEvenFill
                                                                   : Qt::WindingFill);
    return outline;
}

QPainterPath strokeOutline(const BezierPath& path, const StrokeStyle& style,
                           const Viewport& viewport) {
    if (!std::isfinite(style.width) || style.width <= 0)
        return {};
    // The stroker works on lengths in pixels. What the coordinate system does beyond scaling both
    // axes alike also applies to the pen, so it follows afterwards.
    const QSizeF unit = viewport.pixelsPerUnit();
    const double scale = std::max(unit.width(), unit.height());
    OutlineBuilder builder([=](Point point) { return QPointF(point.x * scale, point.y * scale); },
                           scale, Purpose::Stroke, style.cap == LineCap::Butt ? 0 : kDotLength);
    const QPainterPath line = builder.convert(path);

    QPainterPathStroker stroker;
    stroker.setWidth(style.width * scale);
    stroker.setCapStyle(entry(kCaps, style.cap));
    stroker.setJoinStyle(entry(kJoins, style.join));
    stroker.setMiterLimit(std::isfinite(style.miterLimit) ? std::max(style.miterLimit, 1.0) : 10);
    stroker.setCurveThreshold(kTolerance);
    const QList<qreal> dashes = dashPattern(style, line, scale);
    if (!dashes.isEmpty()) {
        const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
        const double phase = std::fmod(style.dashPhase / style.width, period);
        stroker.setDashPattern(dashes);
        stroker.setDashOffset(!std::isfinite(phase) ? 0 : phase < 0 ? phase + period : phase);
    }
    const auto toPixels = QTransform::fromScale(1 / scale, 1 / scale) * viewport.toPixels();
    QPainterPath outline = toPixels.map(withoutCurves(stroker.createStroke(line)));
    outline.setFillRule(Qt::WindingFill);
    return outline;
}

} // namespace platform::qt
