#pragma once

#include "report/layout.h"

namespace report {

/// Throws Error (Unreadable) with the line of a picture that the renderer would leave away: one that cannot
/// be read, is no raster picture, or is larger than kMostPixels; or where all together are larger than
/// kMostPixelsOfAll.
void checkPictures(const Layout &layout);

/// Pixels of one picture: a sheet of A4 at 450 dots an inch is less.
inline constexpr qint64 kMostPixels = 30'000'000;
inline constexpr qint64 kMostPixelsOfAll = 60'000'000;

} // namespace report
