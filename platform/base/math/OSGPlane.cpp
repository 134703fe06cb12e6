/// \file
/// Planes set, moved and cut with each other.

#include "OSGPlane.h"

#include <cmath>
#include <ostream>

#include "OSGLine.h"

OSG_BEGIN_NAMESPACE

void Plane::set(const Vec3f &normal, Real32 distanceFromOrigin)
{
    _normal = normal;
    _normal.normalize();
    _distance = distanceFromOrigin;
}

void Plane::set(const Vec3f &normal, const Pnt3f &point)
{
    Vec3d unit(normal);
    unit.normalize();
    _normal = Vec3f(unit);
    _distance = static_cast<Real32>(unit.dot(Pnt3d(point)));
}

void Plane::set(const Pnt3f &p0, const Pnt3f &p1, const Pnt3f &p2)
{
    Vec3d unit = (Pnt3d(p1) - Pnt3d(p0)).cross(Pnt3d(p2) - Pnt3d(p0));
    unit.normalize();
    _normal = Vec3f(unit);
    _distance = static_cast<Real32>(unit.dot(Pnt3d(p0)));
}

void Plane::set(Real32 x, Real32 y, Real32 z, Real32 w)
{
    const Vec3d full(x, y, z);
    const Real64 length = full.length();
    const Real64 scale = length > 0.0 ? 1.0 / length : 1.0;
    _normal = Vec3f(full * scale);
    _distance = static_cast<Real32>(-w * scale);
}

bool Plane::isInHalfSpace(const Pnt3f &min, const Pnt3f &max) const
{
    // the corner that lies farthest along the normal decides
    return isInHalfSpace(Pnt3f(_normal.x() > 0 ? max.x() : min.x(), _normal.y() > 0 ? max.y() : min.y(),
                               _normal.z() > 0 ? max.z() : min.z()));
}

void Plane::transform(const Matrix &matrix)
{
    Matrix4d full;
    for (UInt32 i = 0; i < 4; ++i)
        full[i] = Vec4d(matrix[i]);
    Matrix4d inverse;
    if (!full.inverse3(inverse))
        return;

    // normals go with the transposed inverse, which keeps their side also where space is mirrored
    const Vec3d normal(_normal);
    const Pnt3d point = full * (normal * _distance).addToZero();
    Vec3d turned = inverse.transposed() * normal;
    turned.normalize();
    _normal = Vec3f(turned);
    _distance = static_cast<Real32>(turned.dot(point));
}

bool Plane::intersect(const Line &line, Pnt3f &point) const
{
    Real32 t;
    if (!intersect(line, t))
        return false;
    point = line.getPoint(t);
    return true;
}

bool Plane::intersect(const Line &line, Real32 &t) const
{
    Real32 along;
    if (!intersectInfinite(line, along) || along < 0)
        return false;
    t = along;
    return true;
}

bool Plane::intersectInfinite(const Line &line, Real32 &t) const
{
    const Vec3d normal(_normal);
    const Real64 height = normal.dot(Pnt3d(line.getPosition())) - _distance;
    const Real64 rise = normal.dot(Vec3d(line.getDirection()));
    if (rise == 0.0)
    {
        if (height != 0.0)
            return false;
        t = 0;
        return true;
    }
    const Real64 along = -height / rise;
    if (!(std::abs(along) <= 3e38))
        return false;
    t = static_cast<Real32>(along);
    return true;
}

bool Plane::intersectInfinite(const Line &line, Pnt3f &point) const
{
    Real32 t;
    if (!intersectInfinite(line, t))
        return false;
    point = line.getPoint(t);
    return true;
}

bool Plane::intersect(const Plane &plane, Line &line) const
{
    const Vec3d n1(_normal);
    const Vec3d n2(plane._normal);
    const Vec3d dir = n1.cross(n2);
    const Real64 square = dir.squareLength();
    if (!(square > 1e-12))
        return false;

    // the point of the line that is closest to the origin
    const Real64 d1 = _distance;
    const Real64 d2 = plane._distance;
    const Vec3d point = (n2.cross(dir) * d1 + dir.cross(n1) * d2) / square;
    line.setValue(Pnt3f(point), Vec3f(dir));
    return true;
}

bool Plane::intersect(const Plane &b, const Plane &c, Pnt3f &point) const
{
    const Vec3d n1(_normal);
    const Vec3d n2(b._normal);
    const Vec3d n3(c._normal);
    const Real64 det = n1.dot(n2.cross(n3));
    if (!(std::abs(det) > 1e-12))
        return false;
    const Vec3d sum = n2.cross(n3) * static_cast<Real64>(_distance) +
                      n3.cross(n1) * static_cast<Real64>(b._distance) +
                      n1.cross(n2) * static_cast<Real64>(c._distance);
    point = Pnt3f(sum / det);
    return true;
}

std::ostream &operator<<(std::ostream &os, const Plane &plane)
{
    return os << plane.getNormal() << ' ' << plane.getDistanceFromOrigin();
}

OSG_END_NAMESPACE
