#ifndef _OSGLINE_H_
#define _OSGLINE_H_

/// \file
/// A line with a starting point, as picking rays and visibility tests need it.

#include <iosfwd>

#include "OSGVector.h"

OSG_BEGIN_NAMESPACE

class BoxVolume;
class FrustumVolume;
class Plane;
class SphereVolume;
class Volume;

/// A position and a direction of length 1, so that parameters along the line are distances from the position.
/// The intersections treat the line as a half-line: it starts at its position and has no far end, also where
/// it was set from two points. This is meant; occlusion tests rely on it. A line of direction 0 (two equal
/// points) is that point alone. Plain values, any thread.
class OSG_BASELIB_DLLMAPPING Line
{
  public:
    /// From the origin along -z.
    constexpr Line() : _pos(), _dir(0, 0, -1) {}
    /// pos may be any point; dir is brought to length 1, and stays 0 where it is 0.
    Line(const Pnt3f &pos, const Vec3f &dir) { setValue(pos, dir); }
    /// Starts at p0 and goes through p1.
    Line(const Pnt3f &p0, const Pnt3f &p1) { setValue(p0, p1); }

    /// From a position and a direction; from two points, the direction then leads to the second one.
    void setValue(const Pnt3f &pos, const Vec3f &dir);
    void setValue(const Pnt3f &p0, const Pnt3f &p1);

    /// Where it begins, and where it leads to.
    constexpr const Pnt3f &getPosition() const { return _pos; }
    constexpr const Vec3f &getDirection() const { return _dir; }
    /// The point at distance t from the position.
    constexpr Pnt3f getPoint(Real32 t) const { return _pos + _dir * t; }

    /// The point of the line, prolonged to both sides, that is closest to point.
    Pnt3f getClosestPoint(const Pnt3f &point) const;
    /// The points of the two lines, prolonged to both sides, that are closest to each other. False for
    /// parallel lines, with nothing set.
    bool getClosestPoints(const Line &other, Pnt3f &onThis, Pnt3f &onOther) const;
    /// The distance of point from the line, prolonged to both sides.
    Real32 distance(const Pnt3f &point) const;

    /// True if the half-line meets the volume. enter and exit are distances from the position, not below 0:
    /// enter is 0 for a line that starts inside. They are set on a hit only. An empty or invalid volume is
    /// never met, an infinite one always, from 0 to the largest Real32. norm, if not null, becomes the
    /// outward normal of the side by which the line enters, or 0 0 0 where it starts inside.
    bool intersect(const SphereVolume &sphere) const;
    bool intersect(const SphereVolume &sphere, Real32 &enter, Real32 &exit) const;
    bool intersect(const BoxVolume &box) const;
    bool intersect(const BoxVolume &box, Real32 &enter, Real32 &exit, Vec3f *norm = nullptr) const;
    bool intersect(const FrustumVolume &frustum) const;
    bool intersect(const FrustumVolume &frustum, Real32 &enter, Real32 &exit) const;
    bool intersect(const Volume &volume) const;
    bool intersect(const Volume &volume, Real32 &enter, Real32 &exit) const;

    /// True if the half-line meets the plane, at the distance t. A line within the plane meets it at 0.
    bool intersect(const Plane &plane, Real32 &t) const;

    /// True if the half-line meets the triangle, from either side, border included, at the distance t. norm,
    /// if not null, becomes the unit normal of the order v0, v1, v2. (T. Moeller and B. Trumbore, 1997.)
    bool intersect(const Pnt3f &v0, const Pnt3f &v1, const Pnt3f &v2, Real32 &t, Vec3f *norm = nullptr) const;

    /// The same numbers.
    friend constexpr bool operator==(const Line &lhs, const Line &rhs)
    {
        return lhs._pos == rhs._pos && lhs._dir == rhs._dir;
    }
    friend constexpr bool operator!=(const Line &lhs, const Line &rhs) { return !(lhs == rhs); }

  private:
    Pnt3f _pos;
    Vec3f _dir;
};

/// Position and direction, separated by one space.
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const Line &line);

OSG_END_NAMESPACE

#endif
