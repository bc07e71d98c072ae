#pragma once

namespace report {

struct Point {
    double x = 0;
    double y = 0;
};

/// A transformation of the plane as SVG has it: x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 1;
    double e = 0;
    double f = 0;

    [[nodiscard]] Point map(Point p) const noexcept { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    [[nodiscard]] double determinant() const noexcept { return a * d - b * c; }
};

/// First `inner`, then `outer`.
[[nodiscard]] inline Affine operator*(const Affine &outer, const Affine &inner) noexcept
{
    const Point origin = outer.map({inner.e, inner.f});
    return {outer.a * inner.a + outer.c * inner.b,
            outer.b * inner.a + outer.d * inner.b,
            outer.a * inner.c + outer.c * inner.d,
            outer.b * inner.c + outer.d * inner.d,
            origin.x,
            origin.y};
}

/// A rectangle whose sides are parallel to the page's.
struct Area {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    [[nodiscard]] bool holds(Point p) const noexcept
    {
        return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom;
    }
    [[nodiscard]] Area moved(double dx, double dy) const noexcept
    {
        return {left + dx, top + dy, right + dx, bottom + dy};
    }
};

/// The rectangle that holds `box` after the transformation.
[[nodiscard]] Area mapped(const Affine &transform, const Area &box) noexcept;

/// How far it is from `from`, a point of the box, along the direction `along` to the border of the box.
/// Infinite for no direction.
[[nodiscard]] double distanceToBorder(const Area &box, Point from, Point along) noexcept;

} // namespace report
