#pragma once

#include "geo/position.h"

namespace geo {

/// Place of a coordinate in the locator grid: field (20 degrees of longitude, 10 of latitude), square (2 and
/// 1) and subsquare (1/12 and 1/24). Whole numbers; doubles, because nothing keeps the operator from typing
/// more degrees than there are.
struct GridPlace {
    double field = 0;
    double square = 0;
    double subsquare = 0;
};

/// Centre of a subsquare in signed decimal degrees, north and east positive.
[[nodiscard]] double longitudeOf(GridPlace place) noexcept;
[[nodiscard]] double latitudeOf(GridPlace place) noexcept;

/// Place of signed decimal degrees. Latitude goes by the longitude's rule, doubled.
[[nodiscard]] GridPlace placeOfLongitude(double degrees) noexcept;
[[nodiscard]] GridPlace placeOfLatitude(double degrees) noexcept;

/// Whole degrees and whole minutes of an unsigned coordinate, both cut. (The tables' positions are rounded to
/// the nearest minute instead, see splitDegrees(); a locator's are cut.)
[[nodiscard]] DegreesMinutes cutToMinutes(double degrees) noexcept;

/// Locator to coordinates: fills the six coordinate boxes and the working values from `TXTLOK` with the
/// centre of its subsquare, then the distance; the bearing stays. False, and nothing changes, where `TXTLOK`
/// has not exactly 6 characters. Nothing else is checked: a character that its place does not know (a
/// lower-case letter, one behind X, a letter among the digits) is read as "A" or "0".
[[nodiscard]] bool cmbkoor(PositionFields &fields, Position &position);

/// Coordinates to locator: fills `TXTLOK` and the working values from the six boxes, then the distance.
/// False, and nothing changes, where one of the four numbers is empty. Only "S" and "W" turn a coordinate;
/// any other hemisphere text counts as N or E. Numbers out of range are not refused: a letter that they have
/// no place for is missing from the locator.
[[nodiscard]] bool cmblok(PositionFields &fields, Position &position);

} // namespace geo
