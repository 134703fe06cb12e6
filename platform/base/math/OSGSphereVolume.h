#ifndef _OSGSPHEREVOLUME_H_
#define _OSGSPHEREVOLUME_H_

/// \file
/// The bounding sphere.

#include <iosfwd>

#include "OSGVolume.h"

OSG_BEGIN_NAMESPACE

/// The points within a radius of a centre, border included. Starts valid and empty.
class OSG_BASELIB_DLLMAPPING SphereVolume : public Volume
{
  public:
    SphereVolume() = default;
    /// radius is not negative.
    SphereVolume(const Pnt3f &center, Real32 radius) { setValue(center, radius); }
    SphereVolume(const SphereVolume &) = default;
    SphereVolume &operator=(const SphereVolume &) = default;

    /// The middle.
    const Pnt3f &getCenter() const { return _center; }
    void getCenter(Pnt3f &center) const override;
    /// The radius.
    Real32 getRadius() const { return _radius; }
    Real32 getScalarVolume() const override;
    void getBounds(Pnt3f &min, Pnt3f &max) const override;

    /// The sphere becomes valid and is neither empty nor infinite any longer.
    void setValue(const Pnt3f &center, Real32 radius);
    /// The other number and the states stay.
    void setCenter(const Pnt3f &center) { _center = center; }
    void setRadius(Real32 radius) { _radius = radius; }

    void extendBy(const Pnt3f &point) override;
    void extendBy(const Volume &volume) override;

    bool intersect(const Pnt3f &point) const override;
    using Volume::intersect;
    bool intersect(const Line &line, Real32 &enter, Real32 &exit) const override;
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    /// The radius grows with the matrix's largest stretching: exactly for equal scales, to a bound of it for
    /// others.
    void transform(const Matrix &matrix) override;
    void dump(UInt32 indent = 0, BitVector flags = 0) const override;

  private:
    Pnt3f _center;
    Real32 _radius = 0;
};

/// True if centre and radius are the same; states do not count.
OSG_BASELIB_DLLMAPPING bool operator==(const SphereVolume &lhs, const SphereVolume &rhs);
OSG_BASELIB_DLLMAPPING bool operator!=(const SphereVolume &lhs, const SphereVolume &rhs);
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const SphereVolume &sphere);

OSG_END_NAMESPACE

#endif
