#include "extras/shared/Sun.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace extras::sun {
namespace {

constexpr double kHorizon = -0.833; // degrees
constexpr double kSecondsPerDegree = 240;
constexpr double kHalfDay = 43200;

double radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}
double degrees(double radians) {
    return radians * 180 / std::numbers::pi;
}

struct Position {
    double declination;    // radians
    double equationOfTime; // seconds that a sundial is ahead of mean time
};

/// The equations of NOAA's solar calculator, after Meeus, "Astronomical Algorithms".
Position positionAt(double instant) {
    const double t = (instant / 86400 + 2440587.5 - 2451545) / 36525; // centuries since 2000
    const double meanLongitude = radians(280.46646 + t * (36000.76983 + t * 0.0003032));
    const double anomaly = radians(357.52911 + t * (35999.05029 - t * 0.0001537));
    const double eccentricity = 0.016708634 - t * (0.000042037 + t * 0.0000001267);
    const double center = radians(std::sin(anomaly) * (1.914602 - t * (0.004817 + t * 0.000014)) +
                                  std::sin(2 * anomaly) * (0.019993 - t * 0.000101) +
                                  std::sin(3 * anomaly) * 0.000289);
    const double node = radians(125.04 - t * 1934.136);
    const double longitude =
        meanLongitude + center - radians(0.00569) - radians(0.00478) * std::sin(node);
    const double obliquity =
        radians(23 + (26 + (21.448 - t * (46.815 + t * (0.00059 - t * 0.001813))) / 60) / 60 +
                0.00256 * std::cos(node));
    const double y = std::pow(std::tan(obliquity / 2), 2);
    const double equation = y * std::sin(2 * meanLongitude) - 2 * eccentricity * std::sin(anomaly) +
                            4 * eccentricity * y * std::sin(anomaly) * std::cos(2 * meanLongitude) -
                            y * y / 2 * std::sin(4 * meanLongitude) -
                            eccentricity * eccentricity * 5 / 4 * std::sin(2 * anomaly);
    return {std::asin(std::sin(obliquity) * std::sin(longitude)),
            degrees(equation) * kSecondsPerDegree};
}

/// Returns the height of the sun's centre, in degrees.
double elevation(const paths::Coordinates& place, double instant) {
    const Position sun = positionAt(instant);
    const double solarTime =
        std::fmod(instant, 2 * kHalfDay) + sun.equationOfTime + place.longitude * kSecondsPerDegree;
    const double hourAngle = radians(solarTime / kSecondsPerDegree - 180);
    const double latitude = radians(place.latitude);
    return degrees(std::asin(
        std::clamp(std::sin(latitude) * std::sin(sun.declination) +
                       std::cos(latitude) * std::cos(sun.declination) * std::cos(hourAngle),
                   -1.0, 1.0)));
}

/// Returns when the sun is highest, within half a day of @p instant.
double transitNear(const paths::Coordinates& place, double instant) {
    for (int i = 0; i < 2; ++i) {
        const double solarTime = instant + positionAt(instant).equationOfTime +
                                 place.longitude * kSecondsPerDegree - kHalfDay;
        instant -= std::remainder(solarTime, 2 * kHalfDay);
    }
    return instant;
}

/// Returns how long the sun takes from the horizon to its highest point, in seconds.
double halfArc(const paths::Coordinates& place, double declination) {
    const double latitude = radians(place.latitude);
    const double cosine =
        (std::sin(radians(kHorizon)) - std::sin(latitude) * std::sin(declination)) /
        std::max(std::cos(latitude) * std::cos(declination), 1e-9);
    return degrees(std::acos(std::clamp(cosine, -1.0, 1.0))) * kSecondsPerDegree;
}

/// Returns when the sun crosses the horizon before (-1) or after (1) it is highest.
std::int64_t crossing(const paths::Coordinates& place, double transit, int direction) {
    // The sun's position changes slowly, so that each step is far more exact than the one before.
    constexpr int kSteps = 5;
    const double equation = positionAt(transit).equationOfTime;
    double instant = transit;
    for (int i = 0; i < kSteps; ++i) {
        const Position sun = positionAt(instant);
        instant =
            transit + equation - sun.equationOfTime + direction * halfArc(place, sun.declination);
    }
    return std::llround(instant);
}

} // namespace

bool isUp(const paths::Coordinates& place, std::int64_t instant) {
    return elevation(place, static_cast<double>(instant)) > kHorizon;
}

Day dayAround(const paths::Coordinates& place, std::int64_t noon) {
    const double transit = transitNear(place, static_cast<double>(noon));
    const auto isUpAt = [&](double instant) { return elevation(place, instant) > kHorizon; };
    if (!isUpAt(transit))
        return {Course::DownAllDay};
    if (isUpAt(transit - kHalfDay) && isUpAt(transit + kHalfDay))
        return {Course::UpAllDay};
    return {Course::RisesAndSets, crossing(place, transit, -1), crossing(place, transit, 1)};
}

} // namespace extras::sun
