#include "platform/values/BezierPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

using namespace platform;

namespace {

using Step = BezierPath::Step;
constexpr auto kClockwise = ArcDirection::Clockwise;

void expectNear(const Rect& actual, const Rect& expected) {
    EXPECT_NEAR(actual.origin.x, expected.origin.x, 1e-2);
    EXPECT_NEAR(actual.origin.y, expected.origin.y, 1e-2);
    EXPECT_NEAR(actual.size.width, expected.size.width, 1e-2);
    EXPECT_NEAR(actual.size.height, expected.size.height, 1e-2);
}

TEST(BezierPath, HasBoundsThatFitItsLinesAndCurves) {
    struct Case {
        const char* name;
        std::function<void(BezierPath&)> append;
        Rect bounds;
    };
    const Case cases[] = {
        {"nothing", [](BezierPath&) {}, {}},
        {"points",
         [](BezierPath& path) {
             path.moveToPoint({3, 9});
             path.moveToPoint({5, -1});
         },
         {{3, -1}, {2, 10}}},
        {"cubic curve",
         [](BezierPath& path) {
             path.moveToPoint({0, 0});
             path.curveToPoint({10, 0}, {0, 8}, {10, 8});
         },
         {{0, 0}, {10, 6}}},
        {"quadratic curve",
         [](BezierPath& path) {
             path.moveToPoint({0, 0});
             path.quadraticCurveToPoint({0, 10}, {10, 5});
         },
         {{0, 0}, {5, 10}}},
        {"oval",
         [](BezierPath& path) {
             path.appendOvalInRect({{1, 2}, {30, 8}});
         },
         {{1, 2}, {30, 8}}},
        {"half a circle",
         [](BezierPath& path) {
             path.appendArcWithCenter({5, 5}, 4, 0, 180);
         },
         {{1, 5}, {8, 4}}},
        {"the same half the other way",
         [](BezierPath& path) {
             path.appendArcWithCenter({5, 5}, 4, 180, 0, kClockwise);
         },
         {{1, 5}, {8, 4}}},
        {"arc beyond a whole turn",
         [](BezierPath& path) {
             path.appendArcWithCenter({5, 5}, 4, -45, 405);
         },
         {{1, 1}, {8, 8}}},
        {"angles in the wrong order",
         [](BezierPath& path) {
             path.appendArcWithCenter({5, 5}, 4, 90, 720);
         },
         {{1, 1}, {8, 8}}},
        {"quarter past 0 degrees",
         [](BezierPath& path) {
             path.appendArcWithCenter({5, 5}, 4, 270, 0);
         },
         {{5, 1}, {4, 4}}},
        {"rounded corner",
         [](BezierPath& path) {
             path.moveToPoint({0, 0});
             path.appendArcFromPoint({10, 0}, {10, 10}, 4);
         },
         {{0, 0}, {10, 4}}},
        {"rounded rectangle with large radii",
         [](BezierPath& path) {
             path.appendRoundedRect({{0, 0}, {10, 4}}, 99, 99);
         },
         {{0, 0}, {10, 4}}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        BezierPath path;
        each.append(path);
        expectNear(path.bounds(), each.bounds);
    }
}

TEST(BezierPath, LeavesOutWhatIsNotFiniteOrEmpty) {
    BezierPath path;
    path.moveToPoint({1, 1});
    const BezierPath before = path;
    for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        path.moveToPoint({bad, 0});
        path.lineToPoint({0, bad});
        path.curveToPoint({2, 2}, {bad, 0}, {0, 0});
        path.curveToPoint({2, 2}, {0, 0}, {0, bad});
        path.quadraticCurveToPoint({bad, 2}, {0, 0});
        path.appendArcFromPoint({5, 5}, {bad, 0}, 2);
        path.appendArcWithCenter({bad, 0}, 2, 0, 90);
        path.appendArcWithCenter({0, 0}, bad, 0, 90);
        path.appendArcWithCenter({0, 0}, 2, 0, bad);
        path.appendOvalInRect({{0, 0}, {bad, 2}});
        path.appendRoundedRect({{0, bad}, {2, 2}}, 1, 1);
    }
    path.appendArcWithCenter({0, 0}, -2, 0, 90);
    path.appendRect({{0, 0}, {2, 0}});
    path.appendOvalInRect({{0, 0}, {-2, 2}});
    EXPECT_EQ(path, before);
}

TEST(BezierPath, ContinuesFromTheCurrentPointOrStartsASubpath) {
    BezierPath path;
    path.closePath();
    EXPECT_EQ(path, BezierPath());
    path.lineToPoint({1, 2});
    EXPECT_EQ(path.elements().front().step, Step::MoveTo);
    path.lineToPoint({3, 2});
    path.appendArcWithCenter({3, 5}, 1, 0, 90);
    EXPECT_EQ(path.elements()[2].step, Step::LineTo);
    EXPECT_EQ(path.elements()[2].point, (Point{4, 5}));
    path.closePath();
    EXPECT_EQ(path.currentPoint(), (Point{1, 2}));

    BezierPath curve;
    curve.quadraticCurveToPoint({4, 0}, {2, 3});
    EXPECT_EQ(curve.elements().front(), (BezierPath::Element{Step::MoveTo, {2, 3}}));

    path.appendBezierPath(curve);
    path.appendBezierPath(path);
    EXPECT_EQ(path.elements().size(), 14U);
    path.closePath();
    EXPECT_EQ(path.currentPoint(), (Point{2, 3}));
}

} // namespace
