/// \file
/// The axis-aligned bounding box.

#include "OSGBoxVolume.h"

#include <cstdio>
#include <limits>
#include <ostream>

#include "OSGLine.h"
#include "OSGVolumeFunctions.h"

OSG_BEGIN_NAMESPACE

BoxVolume::BoxVolume(const Pnt3f &min, const Pnt3f &max) { setBounds(min, max); }

BoxVolume::BoxVolume(Real32 minx, Real32 miny, Real32 minz, Real32 maxx, Real32 maxy, Real32 maxz)
{
    setBounds(minx, miny, minz, maxx, maxy, maxz);
}

void BoxVolume::getCenter(Pnt3f &center) const
{
    // halved first, so that the largest boxes have a centre too
    for (UInt32 i = 0; i < 3; ++i)
        center[i] = 0.5f * _min[i] + 0.5f * _max[i];
}

Real32 BoxVolume::getScalarVolume() const
{
    if (isInfinite())
        return std::numeric_limits<Real32>::max();
    const Vec3f size = getSize();
    return size.x() * size.y() * size.z();
}

void BoxVolume::getBounds(Pnt3f &min, Pnt3f &max) const
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
        min = _min;
        max = _max;
    }
}

Vec3f BoxVolume::getSize() const { return isEmpty() ? Vec3f() : _max - _min; }

void BoxVolume::getSize(Real32 &width, Real32 &height, Real32 &depth) const
{
    const Vec3f size = getSize();
    width = size.x();
    height = size.y();
    depth = size.z();
}

void BoxVolume::setBounds(const Pnt3f &min, const Pnt3f &max)
{
    _min = min;
    _min.minInPlace(max);
    _max = max;
    _max.maxInPlace(min);
    setValid();
    setEmpty(false);
    setInfinite(false);
}

void BoxVolume::setBounds(Real32 minx, Real32 miny, Real32 minz, Real32 maxx, Real32 maxy, Real32 maxz)
{
    setBounds(Pnt3f(minx, miny, minz), Pnt3f(maxx, maxy, maxz));
}

void BoxVolume::setBounds(Real32 width, Real32 height, Real32 depth)
{
    setBoundsByCenterAndSize(Pnt3f(), Vec3f(width, height, depth));
}

void BoxVolume::setBoundsByCenterAndSize(const Pnt3f &center, const Vec3f &size)
{
    setBounds(center - size * 0.5f, center + size * 0.5f);
}

void BoxVolume::extendBy(const Pnt3f &point)
{
    if (!canExtend())
        return;
    if (isEmpty())
    {
        setBounds(point, point);
        return;
    }
    _min.minInPlace(point);
    _max.maxInPlace(point);
}

void BoxVolume::extendBy(const Volume &volume) { extend(*this, volume); }

bool BoxVolume::intersect(const Pnt3f &point) const
{
    if (!isValid())
        return false;
    if (isInfinite())
        return true;
    if (isEmpty())
        return false;
    for (UInt32 i = 0; i < 3; ++i)
        if (!(_min[i] <= point[i] && point[i] <= _max[i]))
            return false;
    return true;
}

bool BoxVolume::intersect(const Line &line, Real32 &enter, Real32 &exit) const
{
    return line.intersect(*this, enter, exit);
}

bool BoxVolume::intersect(const Volume &volume) const
{
    return osg::intersect(static_cast<const Volume &>(*this), volume);
}

bool BoxVolume::isOnSurface(const Pnt3f &point) const
{
    if (!isUntouched())
        return false;
    bool onSide = false;
    for (UInt32 i = 0; i < 3; ++i)
    {
        const Real32 aboveMin = point[i] - _min[i];
        const Real32 belowMax = _max[i] - point[i];
        if (!(aboveMin >= -Eps && belowMax >= -Eps))
            return false;
        onSide = onSide || aboveMin <= Eps || belowMax <= Eps;
    }
    return onSide;
}

void BoxVolume::transform(const Matrix &matrix)
{
    if (isEmpty() || isInfinite())
        return;

    // each column adds its smaller and its larger end (J. Arvo, 1990), which is the box of all eight corners
    Pnt3f min(matrix[3].x(), matrix[3].y(), matrix[3].z());
    Pnt3f max = min;
    for (UInt32 column = 0; column < 3; ++column)
        for (UInt32 row = 0; row < 3; ++row)
        {
            const Real32 a = matrix[column][row] * _min[column];
            const Real32 b = matrix[column][row] * _max[column];
            min[row] += a < b ? a : b;
            max[row] += a < b ? b : a;
        }
    _min = min;
    _max = max;
}

void BoxVolume::dump(UInt32 indent, BitVector) const
{
    std::fprintf(stderr, "%*sBox: min (%g, %g, %g), max (%g, %g, %g), state %u\n", static_cast<int>(indent),
                 "", _min.x(), _min.y(), _min.z(), _max.x(), _max.y(), _max.z(),
                 static_cast<unsigned>(getState()));
}

bool operator==(const BoxVolume &lhs, const BoxVolume &rhs)
{
    return lhs.getMin() == rhs.getMin() && lhs.getMax() == rhs.getMax();
}

bool operator!=(const BoxVolume &lhs, const BoxVolume &rhs) { return !(lhs == rhs); }

std::ostream &operator<<(std::ostream &os, const BoxVolume &box)
{
    return os << box.getMin() << ' ' << box.getMax();
}

OSG_END_NAMESPACE
