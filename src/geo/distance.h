#pragma once

namespace geo {

/// Whole degrees and whole minutes of a coordinate. degrees * 60 + minutes is the coordinate in minutes, also
/// west and south: -77.5 degrees are -78 degrees and 30 minutes.
struct DegreesMinutes {
    int degrees = 0; ///< whole part toward minus infinity
    int minutes = 0; ///< 0 to 59, rounded to the nearest
};

/// Splits signed decimal degrees. 60 minutes after rounding carry into the degrees.
[[nodiscard]] DegreesMinutes splitDegrees(double degrees) noexcept;

/// A position in minutes of arc, north and east positive.
struct ArcMinutes {
    double latitude = 0;
    double longitude = 0;
};

/// Legs and length of the flat triangle between two positions, in kilometres. One minute counts 1.82 km
/// north-south and 1.12 km east-west at every latitude: the program's own flat-earth rule, kept as operators
/// know it.
struct FlatTriangle {
    double northSouth = 0;
    double eastWest = 0;
    double distance = 0;
};

[[nodiscard]] FlatTriangle flatTriangle(ArcMinutes own, ArcMinutes contact) noexcept;

/// Arcsine by the arctangent, in radians; |x| < 1.
[[nodiscard]] double arcsine(double x) noexcept;

/// Bearing from the own position to the contact in whole degrees, 0 to 360. `keep` where both are the same
/// place. The angle comes from the flat triangle with 57.3 degrees to the radian, rounded half to even.
/// Nearly due north from the west side gives 360, not 0.
[[nodiscard]] int flatBearing(ArcMinutes own, ArcMinutes contact, int keep) noexcept;

} // namespace geo
