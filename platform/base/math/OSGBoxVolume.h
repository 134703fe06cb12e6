#ifndef _OSGBOXVOLUME_H_
#define _OSGBOXVOLUME_H_

/// \file
/// The axis-aligned bounding box.

#include <iosfwd>

#include "OSGVolume.h"

OSG_BEGIN_NAMESPACE

/// The points between two corners, both included. Starts valid and empty.
class OSG_BASELIB_DLLMAPPING BoxVolume : public Volume
{
  public:
    BoxVolume() = default;
    /// Between two corners.
    BoxVolume(const Pnt3f &min, const Pnt3f &max);
    BoxVolume(Real32 minx, Real32 miny, Real32 minz, Real32 maxx, Real32 maxy, Real32 maxz);
    /// A copy has the same state.
    BoxVolume(const BoxVolume &) = default;
    BoxVolume &operator=(const BoxVolume &) = default;

    /// The least and the greatest corner.
    const Pnt3f &getMin() const { return _min; }
    const Pnt3f &getMax() const { return _max; }
    using Volume::getCenter;
    /// The middle.
    void getCenter(Pnt3f &center) const override;
    Real32 getScalarVolume() const override;
    void getBounds(Pnt3f &min, Pnt3f &max) const override;
    /// The lengths of the edges.
    Vec3f getSize() const;
    /// The sides' lengths.
    void getSize(Real32 &width, Real32 &height, Real32 &depth) const;

    /// Corners may come in any order. The box becomes valid and is neither empty nor infinite any longer.
    void setBounds(const Pnt3f &min, const Pnt3f &max);
    void setBounds(Real32 minx, Real32 miny, Real32 minz, Real32 maxx, Real32 maxy, Real32 maxz);
    /// Around the origin.
    void setBounds(Real32 width, Real32 height, Real32 depth);
    /// Around the center.
    void setBoundsByCenterAndSize(const Pnt3f &center, const Vec3f &size);

    void extendBy(const Pnt3f &point) override;
    void extendBy(const Volume &volume) override;

    bool intersect(const Pnt3f &point) const override;
    using Volume::intersect;
    bool intersect(const Line &line, Real32 &enter, Real32 &exit) const override;
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    /// The box around the eight transformed corners.
    void transform(const Matrix &matrix) override;
    void dump(UInt32 indent = 0, BitVector flags = 0) const override;

  private:
    Pnt3f _min;
    Pnt3f _max;
};

/// True if the corners are the same; states do not count.
OSG_BASELIB_DLLMAPPING bool operator==(const BoxVolume &lhs, const BoxVolume &rhs);
OSG_BASELIB_DLLMAPPING bool operator!=(const BoxVolume &lhs, const BoxVolume &rhs);
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const BoxVolume &box);

OSG_END_NAMESPACE

#endif
