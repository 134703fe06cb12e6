/// \file
/// What happens between two bounding volumes: a function for each pair of kinds, and the choice among them.

#include "OSGVolumeFunctions.h"

#include <cmath>

#include "OSGBoxVolume.h"
#include "OSGFrustumVolume.h"
#include "OSGSphereVolume.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// Settles the cases in which vol's shape does not count. True if srcVol is to be extended by the shape.
bool extendsByShape(Volume &srcVol, const Volume &vol)
{
    if ((!srcVol.isValid() && !srcVol.isEmpty()) || srcVol.isInfinite() || !vol.isValid())
        return false;
    if (vol.isInfinite())
    {
        srcVol.setValid();
        srcVol.setEmpty(false);
        srcVol.setInfinite();
        return false;
    }
    return !vol.isEmpty();
}

/// Settles the cases in which shapes don't count. True if the shapes decide, otherwise the answer is in
/// result.
bool shapesDecide(const Volume &vol1, const Volume &vol2, bool &result)
{
    const auto meetsNothing = [](const Volume &vol)
    { return !vol.isValid() || (vol.isEmpty() && !vol.isInfinite()); };
    result = !meetsNothing(vol1) && !meetsNothing(vol2);
    return result && !vol1.isInfinite() && !vol2.isInfinite();
}

/// The least Real32 that is not below v.
Real32 roundedUp(Real64 v)
{
    const Real32 nearest = static_cast<Real32>(v);
    return static_cast<Real64>(nearest) < v ? std::nextafter(nearest, HUGE_VALF) : nearest;
}

/// Every component as the Real32 nearest to it. Through volatile, since gcc 12 drops the rounding where it
/// vectorises a conversion from double to float and back, and a sphere has to fit its rounded centre.
Pnt3f rounded(const Pnt3d &point)
{
    Pnt3f result;
    for (UInt32 i = 0; i < 3; ++i)
    {
        volatile Real32 component = static_cast<Real32>(point[i]);
        result[i] = component;
    }
    return result;
}

/// The sphere around a box that is a shape.
SphereVolume sphereAround(const Pnt3f &min, const Pnt3f &max)
{
    Pnt3f center;
    Vec3d half; // to the farther side, as the centre may be rounded
    for (UInt32 i = 0; i < 3; ++i)
    {
        center[i] = 0.5f * min[i] + 0.5f * max[i];
        const Real64 middle = center[i];
        half[i] = std::fmax(middle - min[i], max[i] - middle);
    }
    return SphereVolume(center, roundedUp(half.length()));
}

bool boundsIntersect(const Volume &vol1, const Volume &vol2)
{
    Pnt3f min1, max1, min2, max2;
    vol1.getBounds(min1, max1);
    vol2.getBounds(min2, max2);
    for (UInt32 i = 0; i < 3; ++i)
        if (!(min1[i] <= max2[i] && min2[i] <= max1[i]))
            return false;
    return true;
}

/// True if some plane of a has all corners of b on its outer side.
bool separates(const FrustumVolume &a, const Pnt3f *corners)
{
    for (UInt32 i = 0; i < 6; ++i)
    {
        UInt32 outside = 0;
        for (UInt32 j = 0; j < 8; ++j)
            outside += a.getPlanes()[i].isInHalfSpace(corners[j]) ? 0u : 1u;
        if (outside == 8)
            return true;
    }
    return false;
}

} // namespace

void extend(BoxVolume &srcVol, const BoxVolume &vol) { extend(srcVol, static_cast<const Volume &>(vol)); }

void extend(BoxVolume &srcVol, const SphereVolume &vol) { extend(srcVol, static_cast<const Volume &>(vol)); }

void extend(BoxVolume &srcVol, const FrustumVolume &vol) { extend(srcVol, static_cast<const Volume &>(vol)); }

void extend(BoxVolume &srcVol, const Volume &vol)
{
    // of every kind the bounds are the smallest box
    if (!extendsByShape(srcVol, vol))
        return;
    Pnt3f min, max;
    vol.getBounds(min, max);
    srcVol.extendBy(min);
    srcVol.extendBy(max);
}

void extend(SphereVolume &srcVol, const BoxVolume &vol)
{
    if (extendsByShape(srcVol, vol))
        extend(srcVol, sphereAround(vol.getMin(), vol.getMax()));
}

void extend(SphereVolume &srcVol, const SphereVolume &vol)
{
    if (!extendsByShape(srcVol, vol))
        return;
    if (srcVol.isEmpty())
    {
        srcVol.setValue(vol.getCenter(), vol.getRadius());
        return;
    }

    // one may hold the other
    const Vec3d between = Pnt3d(vol.getCenter()) - Pnt3d(srcVol.getCenter());
    const Real64 distance = between.length();
    const Real64 radius1 = srcVol.getRadius();
    const Real64 radius2 = vol.getRadius();
    if (distance + radius2 <= radius1)
        return;
    if (distance + radius1 <= radius2)
    {
        srcVol.setValue(vol.getCenter(), vol.getRadius());
        return;
    }

    // otherwise the new sphere touches both from outside; the radius makes up for the rounding of its centre
    const Real64 radius = 0.5 * (distance + radius1 + radius2);
    const Pnt3d exact = Pnt3d(srcVol.getCenter()) + between * ((radius - radius1) / distance);
    const Pnt3f center = rounded(exact);
    const Real64 need1 = Pnt3d(center).dist(Pnt3d(srcVol.getCenter())) + radius1;
    const Real64 need2 = Pnt3d(center).dist(Pnt3d(vol.getCenter())) + radius2;
    srcVol.setValue(center, roundedUp(std::fmax(need1, need2)));
}

void extend(SphereVolume &srcVol, const FrustumVolume &vol)
{
    if (!extendsByShape(srcVol, vol))
        return;
    Pnt3f min, max;
    vol.getBounds(min, max);
    extend(srcVol, sphereAround(min, max));
}

void extend(SphereVolume &srcVol, const Volume &vol)
{
    const Volume &instance = vol.getInstance();
    if (const SphereVolume *sphere = dynamic_cast<const SphereVolume *>(&instance))
    {
        extend(srcVol, *sphere);
        return;
    }
    if (!extendsByShape(srcVol, instance))
        return;
    Pnt3f min, max;
    instance.getBounds(min, max);
    extend(srcVol, sphereAround(min, max));
}

void extend(FrustumVolume &srcVol, const Volume &vol)
{
    if (!extendsByShape(srcVol, vol))
        return;
    Pnt3f min, max;
    vol.getBounds(min, max);
    for (UInt32 i = 0; i < 8; ++i)
        srcVol.extendBy(
            Pnt3f((i & 1u) ? max.x() : min.x(), (i & 2u) ? max.y() : min.y(), (i & 4u) ? max.z() : min.z()));
}

void extend(Volume &srcVol, const Volume &vol) { srcVol.getInstance().extendBy(vol.getInstance()); }

bool intersect(const BoxVolume &vol1, const BoxVolume &vol2)
{
    bool result;
    return shapesDecide(vol1, vol2, result) ? boundsIntersect(vol1, vol2) : result;
}

/// By the point of the box that is closest to the sphere's centre (J. Arvo, 1990).
bool intersect(const BoxVolume &vol1, const SphereVolume &vol2)
{
    bool result;
    if (!shapesDecide(vol1, vol2, result))
        return result;
    Pnt3f closest = vol2.getCenter();
    closest.maxInPlace(vol1.getMin());
    closest.minInPlace(vol1.getMax());
    return vol2.intersect(closest);
}

bool intersect(const BoxVolume &vol1, const FrustumVolume &vol2)
{
    bool result;
    if (!shapesDecide(vol1, vol2, result))
        return result;
    for (UInt32 i = 0; i < 6; ++i)
        if (vol2.getPlanes()[i].isOutHalfSpace(vol1.getMin(), vol1.getMax()))
            return false;
    return true;
}

bool intersect(const SphereVolume &vol1, const BoxVolume &vol2) { return intersect(vol2, vol1); }

bool intersect(const SphereVolume &vol1, const SphereVolume &vol2)
{
    bool result;
    if (!shapesDecide(vol1, vol2, result))
        return result;
    const Real64 radii = static_cast<Real64>(vol1.getRadius()) + vol2.getRadius();
    return Pnt3d(vol1.getCenter()).dist2(Pnt3d(vol2.getCenter())) <= radii * radii;
}

bool intersect(const SphereVolume &vol1, const FrustumVolume &vol2)
{
    bool result;
    if (!shapesDecide(vol1, vol2, result))
        return result;
    for (UInt32 i = 0; i < 6; ++i)
        if (vol2.getPlanes()[i].distance(vol1.getCenter()) < -vol1.getRadius())
            return false;
    return true;
}

bool intersect(const FrustumVolume &vol1, const BoxVolume &vol2) { return intersect(vol2, vol1); }

bool intersect(const FrustumVolume &vol1, const SphereVolume &vol2) { return intersect(vol2, vol1); }

bool intersect(const FrustumVolume &vol1, const FrustumVolume &vol2)
{
    bool result;
    if (!shapesDecide(vol1, vol2, result))
        return result;
    Pnt3f corners1[8];
    Pnt3f corners2[8];
    if (!vol1.getCorners(corners1) || !vol2.getCorners(corners2))
        return true;
    return !separates(vol1, corners2) && !separates(vol2, corners1);
}

bool intersect(const Volume &vol1, const Volume &vol2)
{
    const Volume &one = vol1.getInstance();
    const Volume &two = vol2.getInstance();
    const auto withKindOf = [](const auto &known, const Volume &other)
    {
        if (const auto *box = dynamic_cast<const BoxVolume *>(&other))
            return intersect(known, *box);
        if (const auto *sphere = dynamic_cast<const SphereVolume *>(&other))
            return intersect(known, *sphere);
        if (const auto *frustum = dynamic_cast<const FrustumVolume *>(&other))
            return intersect(known, *frustum);
        bool result;
        return shapesDecide(known, other, result) ? boundsIntersect(known, other) : result;
    };
    if (const auto *box = dynamic_cast<const BoxVolume *>(&one))
        return withKindOf(*box, two);
    if (const auto *sphere = dynamic_cast<const SphereVolume *>(&one))
        return withKindOf(*sphere, two);
    if (const auto *frustum = dynamic_cast<const FrustumVolume *>(&one))
        return withKindOf(*frustum, two);
    bool result;
    return shapesDecide(one, two, result) ? boundsIntersect(one, two) : result;
}

OSG_END_NAMESPACE
