#ifndef TESSALY_VIEW_GEOMETRY_H
#define TESSALY_VIEW_GEOMETRY_H

/// \file
/// Points and boxes in double precision, as options and cameras use them.

#include <array>
#include <cmath>

namespace viewer
{

using Vec3 = std::array<double, 3>;

/// A box along the axes; each component of `low` is at most that of `high`.
struct Box
{
    Vec3 low{};
    Vec3 high{};
};

inline Vec3 operator+(const Vec3 &a, const Vec3 &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

inline Vec3 operator-(const Vec3 &a, const Vec3 &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

inline Vec3 operator*(double s, const Vec3 &a)
{
    return {s * a[0], s * a[1], s * a[2]};
}

inline double dot(const Vec3 &a, const Vec3 &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Vec3 cross(const Vec3 &a, const Vec3 &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline double length(const Vec3 &a)
{
    return std::sqrt(dot(a, a));
}

constexpr double pi = 3.14159265358979323846;

/// `v` turned by an angle in radians around a unit axis, counter-clockwise seen against the axis (Rodrigues'
/// formula).
inline Vec3 rotated(const Vec3 &v, const Vec3 &axis, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return c * v + s * cross(axis, v) + ((1.0 - c) * dot(axis, v)) * axis;
}

/// `a` must not be 0.
inline Vec3 normalized(const Vec3 &a)
{
    return (1.0 / length(a)) * a;
}

} // namespace viewer

#endif
