#ifndef _OSGPLANE_H_
#define _OSGPLANE_H_

/// \file
/// A plane, which parts space into two halves.

#include <iosfwd>

#include "OSGMatrix.h"

OSG_BEGIN_NAMESPACE

class Line;

/// The points p with normal . p = distance; the half-space is where normal . p is not smaller. The normal has
/// length 1. Plain values, any thread.
class OSG_BASELIB_DLLMAPPING Plane
{
  public:
    /// The plane z = 0.
    constexpr Plane() : _normal(0, 0, 1), _distance(0) {}
    /// normal is brought to length 1; distanceFromOrigin is along it, in units of space.
    Plane(const Vec3f &normal, Real32 distanceFromOrigin) { set(normal, distanceFromOrigin); }
    /// Through point.
    Plane(const Vec3f &normal, const Pnt3f &point) { set(normal, point); }
    /// Through three points; seen from the side of the normal they run counter-clockwise.
    Plane(const Pnt3f &p0, const Pnt3f &p1, const Pnt3f &p2) { set(p0, p1, p2); }

    /// From the normal, which is brought to length 1, with a distance or a point; from three points,
    /// anticlockwise.
    void set(const Vec3f &normal, Real32 distanceFromOrigin);
    void set(const Vec3f &normal, const Pnt3f &point);
    void set(const Pnt3f &p0, const Pnt3f &p1, const Pnt3f &p2);
    /// The half-space x * p.x + y * p.y + z * p.z + w >= 0, as GL's clip planes are written.
    void set(Real32 x, Real32 y, Real32 z, Real32 w);
    void set(const Vec4f &plane) { set(plane.x(), plane.y(), plane.z(), plane.w()); }

    /// The normal, of length 1, and the distance from the origin along it.
    constexpr const Vec3f &getNormal() const { return _normal; }
    /// The distance of the plane from the origin, along the normal.
    constexpr Real32 getDistanceFromOrigin() const { return _distance; }
    /// (x, y, z, w) as the set of four numbers takes them.
    constexpr Vec4f getClipPlane() const { return Vec4f(_normal.x(), _normal.y(), _normal.z(), -_distance); }
    /// Moves the plane along its normal.
    constexpr void setDistanceFromOrigin(Real32 distance) { _distance = distance; }
    /// Moves the plane along its normal.
    constexpr void offset(Real32 d) { _distance += d; }

    /// Signed: positive on the side of the normal.
    constexpr Real32 distance(const Pnt3f &point) const { return _normal.dot(point) - _distance; }
    /// The plane counts as part of its half-space.
    constexpr bool isInHalfSpace(const Pnt3f &point) const { return distance(point) >= 0; }
    /// The rest.
    constexpr bool isOutHalfSpace(const Pnt3f &point) const { return !isInHalfSpace(point); }
    /// True if some of the box from min to max is in the half-space.
    bool isInHalfSpace(const Pnt3f &min, const Pnt3f &max) const;
    /// True if the box from min to max lies outside the half-space as a whole.
    bool isOutHalfSpace(const Pnt3f &min, const Pnt3f &max) const { return !isInHalfSpace(min, max); }
    /// True within Eps of the plane.
    constexpr bool isOnPlane(const Pnt3f &point) const
    {
        return distance(point) <= Eps && distance(point) >= -Eps;
    }

    /// The plane of the transformed points; a mirrored space keeps the half-space's points in it. A singular
    /// matrix leaves the plane as it is.
    void transform(const Matrix &matrix);

    /// Where the half-line (from its position on) meets the plane; a line within the plane does at its
    /// position.
    bool intersect(const Line &line, Pnt3f &point) const;
    /// The same as a distance along the line.
    bool intersect(const Line &line, Real32 &t) const;
    /// The same for the line prolonged to both sides; t may be negative.
    bool intersectInfinite(const Line &line, Real32 &t) const;
    bool intersectInfinite(const Line &line, Pnt3f &point) const;
    /// The line in which two planes meet; false for parallel ones, with nothing set.
    bool intersect(const Plane &plane, Line &line) const;
    /// The point in which three planes meet; false where it is not one, with nothing set.
    bool intersect(const Plane &b, const Plane &c, Pnt3f &point) const;

    /// The same numbers.
    friend constexpr bool operator==(const Plane &lhs, const Plane &rhs)
    {
        return lhs._normal == rhs._normal && lhs._distance == rhs._distance;
    }
    friend constexpr bool operator!=(const Plane &lhs, const Plane &rhs) { return !(lhs == rhs); }

  private:
    Vec3f _normal;
    Real32 _distance;
};

/// Normal and distance, separated by one space.
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const Plane &plane);

OSG_END_NAMESPACE

#endif
