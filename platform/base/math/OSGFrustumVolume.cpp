/// \file
/// The volume between six planes.

#include "OSGFrustumVolume.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <ostream>

#include "OSGLine.h"
#include "OSGVolumeFunctions.h"

OSG_BEGIN_NAMESPACE

namespace
{

Plane reversed(const Plane &plane) { return Plane(-plane.getNormal(), -plane.getDistanceFromOrigin()); }

/// The plane through three points that has inside in its half-space.
Plane facing(const Pnt3f &inside, const Pnt3f &p0, const Pnt3f &p1, const Pnt3f &p2)
{
    const Plane plane(p0, p1, p2);
    return plane.isInHalfSpace(inside) ? plane : reversed(plane);
}

} // namespace

void FrustumVolume::setPlanes(const Plane &pnear, const Plane &pfar, const Plane &pleft, const Plane &pright,
                              const Plane &ptop, const Plane &pbottom)
{
    _planes[PLANE_NEAR] = pnear;
    _planes[PLANE_FAR] = pfar;
    _planes[PLANE_LEFT] = pleft;
    _planes[PLANE_RIGHT] = pright;
    _planes[PLANE_TOP] = ptop;
    _planes[PLANE_BOTTOM] = pbottom;
    setValid();
    setEmpty(false);
    setInfinite(false);
}

void FrustumVolume::setPlanes(const Pnt3f &nlt, const Pnt3f &nlb, const Pnt3f &nrt, const Pnt3f &nrb, //
                              const Pnt3f &flt, const Pnt3f &flb, const Pnt3f &frt, const Pnt3f &frb)
{
    Vec3f sum;
    for (const Pnt3f *corner : {&nlt, &nlb, &nrt, &nrb, &flt, &flb, &frt, &frb})
        sum += corner->subZero();
    const Pnt3f center = (sum * 0.125f).addToZero();

    setPlanes(facing(center, nlt, nlb, nrt), facing(center, flt, flb, frt), facing(center, flt, flb, nlt),
              facing(center, frt, frb, nrt), facing(center, flt, frt, nlt), facing(center, flb, frb, nlb));
}

void FrustumVolume::setPlanes(const Matrix &clipMatrix)
{
    const Matrix rows = clipMatrix.transposed();
    Plane left, right, bottom, top, nearer, farther;
    left.set(rows[3] + rows[0]);
    right.set(rows[3] - rows[0]);
    bottom.set(rows[3] + rows[1]);
    top.set(rows[3] - rows[1]);
    nearer.set(rows[3] + rows[2]);
    farther.set(rows[3] - rows[2]);
    setPlanes(nearer, farther, left, right, top, bottom);
}

void FrustumVolume::setBox(const Pnt3f &min, const Pnt3f &max)
{
    setPlanes(Plane(Vec3f(0, 0, -1), max), Plane(Vec3f(0, 0, 1), min), Plane(Vec3f(1, 0, 0), min),
              Plane(Vec3f(-1, 0, 0), max), Plane(Vec3f(0, -1, 0), max), Plane(Vec3f(0, 1, 0), min));
}

bool FrustumVolume::getCorners(Pnt3f *corners) const
{
    // the bits of a corner's number are: bottom, right, far
    Pnt3f found[8];
    for (UInt32 i = 0; i < 8; ++i)
    {
        const Plane &depth = _planes[(i & 4u) ? PLANE_FAR : PLANE_NEAR];
        const Plane &side = _planes[(i & 2u) ? PLANE_RIGHT : PLANE_LEFT];
        const Plane &height = _planes[(i & 1u) ? PLANE_BOTTOM : PLANE_TOP];
        if (!depth.intersect(side, height, found[i]))
            return false;
    }
    for (UInt32 i = 0; i < 8; ++i)
        corners[i] = found[i];
    return true;
}

void FrustumVolume::getCenter(Pnt3f &center) const
{
    Pnt3f corners[8];
    Vec3f sum;
    if (getCorners(corners))
        for (const Pnt3f &corner : corners)
            sum += corner.subZero();
    center = (sum * 0.125f).addToZero();
}

Real32 FrustumVolume::getScalarVolume() const
{
    if (isInfinite())
        return std::numeric_limits<Real32>::max();
    Pnt3f corners[8];
    if (isEmpty() || !getCorners(corners))
        return 0;

    // the six tetrahedra along the diagonal from corner 0 to corner 7, one for each order of the three axes
    const UInt32 axes[6][2] = {{1, 2}, {1, 4}, {2, 1}, {2, 4}, {4, 1}, {4, 2}};
    const Vec3d diagonal(corners[7] - corners[0]);
    Real64 sum = 0.0;
    for (const auto &axis : axes)
    {
        const Vec3d first(corners[axis[0]] - corners[0]);
        const Vec3d second(corners[axis[0] | axis[1]] - corners[0]);
        sum += std::abs(first.cross(second).dot(diagonal)) / 6.0;
    }
    return static_cast<Real32>(sum);
}

void FrustumVolume::getBounds(Pnt3f &min, Pnt3f &max) const
{
    constexpr Real32 Largest = std::numeric_limits<Real32>::max();
    Pnt3f corners[8];
    if (!isInfinite() && isEmpty())
    {
        min.fill(1);
        max.fill(-1);
        return;
    }
    if (isInfinite() || !getCorners(corners))
    {
        min.fill(-Largest);
        max.fill(Largest);
        return;
    }
    min = max = corners[0];
    for (const Pnt3f &corner : corners)
    {
        min.minInPlace(corner);
        max.maxInPlace(corner);
    }
}

void FrustumVolume::extendBy(const Pnt3f &point)
{
    if (!canExtend())
        return;
    if (isEmpty())
    {
        setBox(point, point);
        return;
    }
    for (Plane &plane : _planes)
        if (!plane.isInHalfSpace(point))
            plane.setDistanceFromOrigin(plane.getNormal().dot(point));
}

void FrustumVolume::extendBy(const Volume &volume) { extend(*this, volume); }

bool FrustumVolume::intersect(const Pnt3f &point) const
{
    if (!isValid())
        return false;
    if (isInfinite())
        return true;
    if (isEmpty())
        return false;
    for (const Plane &plane : _planes)
        if (!plane.isInHalfSpace(point))
            return false;
    return true;
}

bool FrustumVolume::intersect(const Line &line, Real32 &enter, Real32 &exit) const
{
    return line.intersect(*this, enter, exit);
}

bool FrustumVolume::intersect(const Volume &volume) const
{
    return osg::intersect(static_cast<const Volume &>(*this), volume);
}

bool FrustumVolume::isOnSurface(const Pnt3f &point) const
{
    if (!isUntouched())
        return false;
    bool onSide = false;
    for (const Plane &plane : _planes)
    {
        if (!(plane.distance(point) >= -Eps))
            return false;
        onSide = onSide || plane.isOnPlane(point);
    }
    return onSide;
}

void FrustumVolume::transform(const Matrix &matrix)
{
    if (isEmpty() || isInfinite())
        return;
    for (Plane &plane : _planes)
        plane.transform(matrix);
}

void FrustumVolume::dump(UInt32 indent, BitVector) const
{
    std::fprintf(stderr, "%*sFrustum:", static_cast<int>(indent), "");
    for (const Plane &plane : _planes)
        std::fprintf(stderr, " (%g, %g, %g; %g)", plane.getNormal().x(), plane.getNormal().y(),
                     plane.getNormal().z(), plane.getDistanceFromOrigin());
    std::fprintf(stderr, ", state %u\n", static_cast<unsigned>(getState()));
}

bool operator==(const FrustumVolume &lhs, const FrustumVolume &rhs)
{
    for (UInt32 i = 0; i < 6; ++i)
        if (lhs.getPlanes()[i] != rhs.getPlanes()[i])
            return false;
    return true;
}

bool operator!=(const FrustumVolume &lhs, const FrustumVolume &rhs) { return !(lhs == rhs); }

std::ostream &operator<<(std::ostream &os, const FrustumVolume &frustum)
{
    for (UInt32 i = 0; i < 6; ++i)
        os << (i == 0 ? "" : " ") << frustum.getPlanes()[i];
    return os;
}

OSG_END_NAMESPACE
