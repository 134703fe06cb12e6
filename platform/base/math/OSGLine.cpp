/// \file
/// Half-lines against volumes, planes and triangles. The arithmetic is Real64, for lines that start far away.

#include "OSGLine.h"

#include <cmath>
#include <limits>
#include <ostream>

#include "OSGBoxVolume.h"
#include "OSGFrustumVolume.h"
#include "OSGPlane.h"
#include "OSGSphereVolume.h"

OSG_BEGIN_NAMESPACE

namespace
{

enum class Meets
{
    Nothing,
    Everything,
    Shape
};

/// What the states alone say about a volume.
Meets byState(const Volume &volume)
{
    if (!volume.isValid())
        return Meets::Nothing;
    if (volume.isInfinite())
        return Meets::Everything;
    return volume.isEmpty() ? Meets::Nothing : Meets::Shape;
}

/// Settles the cases in which the shape does not count. True if it is settled, with the answer in hit.
bool settledByState(const Volume &volume, Real32 &enter, Real32 &exit, bool &hit)
{
    const Meets meets = byState(volume);
    hit = meets == Meets::Everything;
    if (hit)
    {
        enter = 0;
        exit = std::numeric_limits<Real32>::max();
    }
    return meets != Meets::Shape;
}

/// A Real64 that may lie beyond Real32 is held at its largest value.
Real32 toReal32(Real64 v)
{
    constexpr Real64 Largest = std::numeric_limits<Real32>::max();
    return static_cast<Real32>(v > Largest ? Largest : v < -Largest ? -Largest : v);
}

} // namespace

void Line::setValue(const Pnt3f &pos, const Vec3f &dir)
{
    // in Real64, where the squares of all Real32 numbers are in range
    Vec3d unit(dir);
    unit.normalize();
    _pos = pos;
    _dir = Vec3f(unit);
}

void Line::setValue(const Pnt3f &p0, const Pnt3f &p1)
{
    Vec3d unit = Pnt3d(p1) - Pnt3d(p0);
    unit.normalize();
    _pos = p0;
    _dir = Vec3f(unit);
}

Pnt3f Line::getClosestPoint(const Pnt3f &point) const { return getPoint((point - _pos).dot(_dir)); }

bool Line::getClosestPoints(const Line &other, Pnt3f &onThis, Pnt3f &onOther) const
{
    const Vec3d u(_dir);
    const Vec3d v(other._dir);
    const Vec3d w = Pnt3d(_pos) - Pnt3d(other._pos);
    const Real64 a = u.dot(u);
    const Real64 b = u.dot(v);
    const Real64 c = v.dot(v);
    const Real64 denominator = a * c - b * b;
    if (!(denominator > 1e-12))
        return false;
    const Real64 d = u.dot(w);
    const Real64 e = v.dot(w);
    onThis = Pnt3f(Pnt3d(_pos) + u * ((b * e - c * d) / denominator));
    onOther = Pnt3f(Pnt3d(other._pos) + v * ((a * e - b * d) / denominator));
    return true;
}

Real32 Line::distance(const Pnt3f &point) const
{
    const Vec3d toPoint = Pnt3d(point) - Pnt3d(_pos);
    const Vec3d dir(_dir);
    return toReal32((toPoint - dir * toPoint.dot(dir)).length());
}

bool Line::intersect(const SphereVolume &sphere) const
{
    Real32 enter;
    Real32 exit;
    return intersect(sphere, enter, exit);
}

bool Line::intersect(const SphereVolume &sphere, Real32 &enter, Real32 &exit) const
{
    bool hit;
    if (settledByState(sphere, enter, exit, hit))
        return hit;

    const Vec3d dir(_dir);
    const Vec3d toCenter = Pnt3d(sphere.getCenter()) - Pnt3d(_pos);
    const Real64 square = static_cast<Real64>(sphere.getRadius()) * sphere.getRadius();
    const bool inside = toCenter.squareLength() <= square;
    if (dir == Vec3d::Null)
    {
        if (inside)
            enter = exit = 0;
        return inside;
    }

    // the line comes closest to the centre at along; behind the start that is of use only from inside
    const Real64 along = toCenter.dot(dir);
    if (along < 0 && !inside)
        return false;
    const Real64 halfChordSquare = square - (toCenter - dir * along).squareLength();
    if (halfChordSquare < 0 && !inside)
        return false;
    const Real64 halfChord = std::sqrt(halfChordSquare > 0 ? halfChordSquare : 0.0);
    enter = toReal32(std::fmax(0.0, along - halfChord));
    exit = toReal32(std::fmax(0.0, along + halfChord));
    return true;
}

bool Line::intersect(const BoxVolume &box) const
{
    Real32 enter;
    Real32 exit;
    return intersect(box, enter, exit);
}

/// By the slabs between opposite sides (T. Kay and J. Kajiya, 1986).
bool Line::intersect(const BoxVolume &box, Real32 &enter, Real32 &exit, Vec3f *norm) const
{
    bool hit;
    if (settledByState(box, enter, exit, hit))
    {
        if (hit && norm)
            norm->setNull();
        return hit;
    }

    Real64 in = 0.0;
    Real64 out = std::numeric_limits<Real64>::max();
    Vec3f side;
    for (UInt32 i = 0; i < 3; ++i)
    {
        const Real64 toMin = static_cast<Real64>(box.getMin()[i]) - _pos[i];
        const Real64 toMax = static_cast<Real64>(box.getMax()[i]) - _pos[i];
        const Real64 dir = _dir[i];
        if (dir == 0.0)
        {
            if (toMin > 0.0 || toMax < 0.0)
                return false;
            continue;
        }
        const Real64 first = (dir > 0.0 ? toMin : toMax) / dir;
        const Real64 last = (dir > 0.0 ? toMax : toMin) / dir;
        if (first > in)
        {
            in = first;
            side.setNull();
            side[i] = dir > 0.0 ? -1.0f : 1.0f;
        }
        out = last < out ? last : out;
        if (in > out)
            return false;
    }

    // only a line without direction is left unbounded by all three slabs
    enter = toReal32(in);
    exit = _dir == Vec3f::Null ? 0.0f : toReal32(out);
    if (norm)
        *norm = side;
    return true;
}

bool Line::intersect(const FrustumVolume &frustum) const
{
    Real32 enter;
    Real32 exit;
    return intersect(frustum, enter, exit);
}

/// By clipping at the six planes (M. Cyrus and J. Beck, 1978).
bool Line::intersect(const FrustumVolume &frustum, Real32 &enter, Real32 &exit) const
{
    bool hit;
    if (settledByState(frustum, enter, exit, hit))
        return hit;

    const Vec3d start = Pnt3d(_pos).subZero();
    Real64 in = 0.0;
    Real64 out = std::numeric_limits<Real64>::max();
    for (UInt32 i = 0; i < 6; ++i)
    {
        const Plane &plane = frustum.getPlanes()[i];
        const Vec3d normal(plane.getNormal());
        const Real64 height = normal.dot(start) - plane.getDistanceFromOrigin();
        const Real64 rise = normal.dot(Vec3d(_dir));
        if (rise == 0.0)
        {
            if (height < 0.0)
                return false;
            continue;
        }
        const Real64 t = -height / rise;
        if (rise > 0.0)
            in = t > in ? t : in;
        else
            out = t < out ? t : out;
        if (in > out)
            return false;
    }
    enter = toReal32(in);
    exit = _dir == Vec3f::Null ? 0.0f : toReal32(out);
    return true;
}

bool Line::intersect(const Volume &volume) const
{
    Real32 enter;
    Real32 exit;
    return volume.intersect(*this, enter, exit);
}

bool Line::intersect(const Volume &volume, Real32 &enter, Real32 &exit) const
{
    return volume.intersect(*this, enter, exit);
}

bool Line::intersect(const Plane &plane, Real32 &t) const { return plane.intersect(*this, t); }

bool Line::intersect(const Pnt3f &v0, const Pnt3f &v1, const Pnt3f &v2, Real32 &t, Vec3f *norm) const
{
    const Vec3d edge1 = Pnt3d(v1) - Pnt3d(v0);
    const Vec3d edge2 = Pnt3d(v2) - Pnt3d(v0);
    const Vec3d dir(_dir);
    const Vec3d p = dir.cross(edge2);
    const Real64 det = edge1.dot(p);
    if (det == 0.0 || !std::isfinite(det))
        return false;

    // the barycentric coordinates of where the line meets the triangle's plane
    const Vec3d fromCorner = Pnt3d(_pos) - Pnt3d(v0);
    const Real64 u = fromCorner.dot(p) / det;
    if (u < 0.0 || u > 1.0)
        return false;
    const Vec3d q = fromCorner.cross(edge1);
    const Real64 v = dir.dot(q) / det;
    if (v < 0.0 || u + v > 1.0)
        return false;

    const Real64 along = edge2.dot(q) / det;
    if (!(along >= 0.0))
        return false;
    t = toReal32(along);
    if (norm)
    {
        Vec3d normal = edge1.cross(edge2);
        normal.normalize();
        *norm = Vec3f(normal);
    }
    return true;
}

std::ostream &operator<<(std::ostream &os, const Line &line)
{
    return os << line.getPosition() << ' ' << line.getDirection();
}

OSG_END_NAMESPACE
