#include "report/affine.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace report {

Area mapped(const Affine &transform, const Area &box) noexcept
{
    const Point first = transform.map({box.left, box.top});
    Area result = {first.x, first.y, first.x, first.y};
    for (const Point corner :
         {Point{box.right, box.top}, Point{box.left, box.bottom}, Point{box.right, box.bottom}}) {
        const Point p = transform.map(corner);
        result.left = std::min(result.left, p.x);
        result.right = std::max(result.right, p.x);
        result.top = std::min(result.top, p.y);
        result.bottom = std::max(result.bottom, p.y);
    }
    return result;
}

double distanceToBorder(const Area &box, Point from, Point along) noexcept
{
    const double length = std::hypot(along.x, along.y);
    if (length <= 0)
        return std::numeric_limits<double>::infinity();
    const double x = along.x / length;
    const double y = along.y / length;
    constexpr double kParallel = 1e-9;
    double distance = std::numeric_limits<double>::infinity();
    if (std::abs(x) > kParallel)
        distance = std::min(distance, ((x > 0 ? box.right : box.left) - from.x) / x);
    if (std::abs(y) > kParallel)
        distance = std::min(distance, ((y > 0 ? box.bottom : box.top) - from.y) / y);
    return std::max(0.0, distance);
}

} // namespace report
