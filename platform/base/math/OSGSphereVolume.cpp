/// \file
/// The bounding sphere.

#include "OSGSphereVolume.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <ostream>

#include "OSGLine.h"
#include "OSGVolumeFunctions.h"

OSG_BEGIN_NAMESPACE

void SphereVolume::getCenter(Pnt3f &center) const { center = _center; }

Real32 SphereVolume::getScalarVolume() const
{
    if (isInfinite())
        return std::numeric_limits<Real32>::max();
    return isEmpty() ? 0.0f : 4.0f / 3.0f * Pi * _radius * _radius * _radius;
}

void SphereVolume::getBounds(Pnt3f &min, Pnt3f &max) const
{
    constexpr Real32 Largest = std::numeric_limits<Real32>::max();
    if (isInfinite())
    {
        min.fill(-Largest);
        max.fill(Largest);
    }
    else if (isEmpty())
    {
        min.fill(1);
        max.fill(-1);
    }
    else
    {
        min = _center - Vec3f(_radius);
        max = _center + Vec3f(_radius);
    }
}

void SphereVolume::setValue(const Pnt3f &center, Real32 radius)
{
    _center = center;
    _radius = radius;
    setValid();
    setEmpty(false);
    setInfinite(false);
}

void SphereVolume::extendBy(const Pnt3f &point)
{
    if (!canExtend())
        return;
    if (isEmpty())
        setValue(point, 0);
    else
        extend(*this, SphereVolume(point, 0));
}

void SphereVolume::extendBy(const Volume &volume) { extend(*this, volume); }

bool SphereVolume::intersect(const Pnt3f &point) const
{
    if (!isValid())
        return false;
    if (isInfinite())
        return true;
    const Real64 radius = _radius;
    return !isEmpty() && Pnt3d(point).dist2(Pnt3d(_center)) <= radius * radius;
}

bool SphereVolume::intersect(const Line &line, Real32 &enter, Real32 &exit) const
{
    return line.intersect(*this, enter, exit);
}

bool SphereVolume::intersect(const Volume &volume) const
{
    return osg::intersect(static_cast<const Volume &>(*this), volume);
}

bool SphereVolume::isOnSurface(const Pnt3f &point) const
{
    return isUntouched() && std::abs(Pnt3d(point).dist(Pnt3d(_center)) - _radius) <= Eps;
}

void SphereVolume::transform(const Matrix &matrix)
{
    if (isEmpty() || isInfinite())
        return;

    // the largest stretching is the root of the largest eigenvalue of transpose(m) * m, which no row sum is
    // below
    Real32 largest = 0;
    for (UInt32 i = 0; i < 3; ++i)
    {
        const Vec3f column(matrix[i]);
        Real32 sum = 0;
        for (UInt32 j = 0; j < 3; ++j)
            sum += std::abs(column.dot(Vec3f(matrix[j])));
        largest = sum > largest ? sum : largest;
    }
    _center = matrix * _center;
    _radius *= std::sqrt(largest);
}

void SphereVolume::dump(UInt32 indent, BitVector) const
{
    std::fprintf(stderr, "%*sSphere: center (%g, %g, %g), radius %g, state %u\n", static_cast<int>(indent),
                 "", _center.x(), _center.y(), _center.z(), _radius, static_cast<unsigned>(getState()));
}

bool operator==(const SphereVolume &lhs, const SphereVolume &rhs)
{
    return lhs.getCenter() == rhs.getCenter() && lhs.getRadius() == rhs.getRadius();
}

bool operator!=(const SphereVolume &lhs, const SphereVolume &rhs) { return !(lhs == rhs); }

std::ostream &operator<<(std::ostream &os, const SphereVolume &sphere)
{
    return os << sphere.getCenter() << ' ' << sphere.getRadius();
}

OSG_END_NAMESPACE
