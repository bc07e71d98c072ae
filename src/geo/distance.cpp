#include "geo/distance.h"

#include <algorithm>
#include <cmath>

namespace geo {

namespace {

constexpr double kKmPerLatitudeMinute = 1.82;
constexpr double kKmPerLongitudeMinute = 1.12;
constexpr double kDegreesPerRadian = 57.3;

/// Nearest integer, halves to even.
int bankersRound(double value) noexcept
{
    const double down = std::floor(value);
    const double rest = value - down;
    const int whole = static_cast<int>(down);
    if (rest > 0.5 || (rest == 0.5 && whole % 2 != 0))
        return whole + 1;
    return whole;
}

} // namespace

DegreesMinutes splitDegrees(double degrees) noexcept
{
    constexpr double kMost = 1e6; // a table's typing error must stay a number that the boxes can show
    degrees = std::clamp(degrees, -kMost, kMost);
    const double whole = std::floor(degrees);
    DegreesMinutes split{static_cast<int>(whole), static_cast<int>(std::lround((degrees - whole) * 60.0))};
    if (split.minutes == 60) {
        split.minutes = 0;
        ++split.degrees;
    }
    return split;
}

FlatTriangle flatTriangle(ArcMinutes own, ArcMinutes contact) noexcept
{
    FlatTriangle triangle;
    triangle.northSouth = kKmPerLatitudeMinute * std::fabs(contact.latitude - own.latitude);
    triangle.eastWest = kKmPerLongitudeMinute * std::fabs(contact.longitude - own.longitude);
    triangle.distance =
        std::sqrt(triangle.eastWest * triangle.eastWest + triangle.northSouth * triangle.northSouth);
    return triangle;
}

double arcsine(double x) noexcept
{
    return std::atan(x / std::sqrt(1.0 - x * x));
}

int flatBearing(ArcMinutes own, ArcMinutes contact, int keep) noexcept
{
    const double east = own.longitude - contact.longitude; // above 0: the contact lies to the west
    const double north = own.latitude - contact.latitude;  // above 0: the contact lies to the south
    if (east == 0.0) {
        if (north == 0.0)
            return keep;
        return north > 0.0 ? 180 : 0;
    }
    const FlatTriangle triangle = flatTriangle(own, contact);
    if (!std::isfinite(triangle.distance))
        return keep; // absurd numbers typed into the boxes
    const int angle = bankersRound(arcsine(triangle.northSouth / triangle.distance) * kDegreesPerRadian);
    if (east > 0.0) {
        if (north == 0.0)
            return 270;
        return north < 0.0 ? 270 + angle : 270 - angle;
    }
    if (north == 0.0)
        return 90;
    return north > 0.0 ? 90 + angle : 90 - angle;
}

} // namespace geo
