#ifndef _OSGFRUSTUMVOLUME_H_
#define _OSGFRUSTUMVOLUME_H_

/// \file
/// The volume between six planes that a camera sees.

#include <iosfwd>

#include "OSGPlane.h"
#include "OSGVolume.h"

OSG_BEGIN_NAMESPACE

/// The points in the half-spaces of six planes, whose normals point inwards. Starts valid and empty.
/// Intersections with volumes are conservative: what meets the frustum is always found, but near edges
/// something that only comes close may be, too.
class OSG_BASELIB_DLLMAPPING FrustumVolume : public Volume
{
  public:
    /// The places of the planes.
    enum PlaneIndex
    {
        PLANE_NEAR = 0,
        PLANE_FAR = 1,
        PLANE_LEFT = 2,
        PLANE_RIGHT = 3,
        PLANE_TOP = 4,
        PLANE_BOTTOM = 5
    };

    FrustumVolume() = default;
    /// From planes that point inwards, and from what projects the frustum to the cube of -1 to 1.
    FrustumVolume(const Plane &pnear, const Plane &pfar, const Plane &pleft, const Plane &pright,
                  const Plane &ptop, const Plane &pbottom)
    {
        setPlanes(pnear, pfar, pleft, pright, ptop, pbottom);
    }
    explicit FrustumVolume(const Matrix &clipMatrix) { setPlanes(clipMatrix); }
    /// A copy has the same state.
    FrustumVolume(const FrustumVolume &) = default;
    FrustumVolume &operator=(const FrustumVolume &) = default;

    /// The planes in the order of PlaneIndex.
    const Plane *getPlanes() const { return _planes; }
    /// One plane.
    const Plane &getNear() const { return _planes[PLANE_NEAR]; }
    const Plane &getFar() const { return _planes[PLANE_FAR]; }
    const Plane &getLeft() const { return _planes[PLANE_LEFT]; }
    const Plane &getRight() const { return _planes[PLANE_RIGHT]; }
    const Plane &getTop() const { return _planes[PLANE_TOP]; }
    const Plane &getBottom() const { return _planes[PLANE_BOTTOM]; }

    /// The frustum becomes valid and is neither empty nor infinite any longer, here and below.
    void setPlanes(const Plane &pnear, const Plane &pfar, const Plane &pleft, const Plane &pright,
                   const Plane &ptop, const Plane &pbottom);
    /// From the corners: near and far, left and right, top and bottom. Handedness does not matter.
    void setPlanes(const Pnt3f &nlt, const Pnt3f &nlb, const Pnt3f &nrt, const Pnt3f &nrb, //
                   const Pnt3f &flt, const Pnt3f &flb, const Pnt3f &frt, const Pnt3f &frb);
    /// From the matrix that takes points to clip coordinates: those p whose (x, y, z) lie between -w and w.
    /// (G. Gribb and K. Hartmann, 2001.)
    void setPlanes(const Matrix &clipMatrix);

    /// The eight corners in the order nlt, nlb, nrt, nrb, flt, flb, frt, frb; false, with nothing set, where
    /// planes that should meet are parallel.
    bool getCorners(Pnt3f *corners) const;

    using Volume::getCenter;
    /// The mean of the corners.
    void getCenter(Pnt3f &center) const override;
    Real32 getScalarVolume() const override;
    void getBounds(Pnt3f &min, Pnt3f &max) const override;

    /// Planes that leave something outside move outwards, keeping their directions. An empty frustum becomes
    /// the box around what is given.
    void extendBy(const Pnt3f &point) override;
    void extendBy(const Volume &volume) override;

    bool intersect(const Pnt3f &point) const override;
    using Volume::intersect;
    bool intersect(const Line &line, Real32 &enter, Real32 &exit) const override;
    bool intersect(const Volume &volume) const override;
    bool isOnSurface(const Pnt3f &point) const override;

    void transform(const Matrix &matrix) override;
    void dump(UInt32 indent = 0, BitVector flags = 0) const override;

  private:
    void setBox(const Pnt3f &min, const Pnt3f &max);

    Plane _planes[6];
};

/// True if the planes are the same; states do not count.
OSG_BASELIB_DLLMAPPING bool operator==(const FrustumVolume &lhs, const FrustumVolume &rhs);
OSG_BASELIB_DLLMAPPING bool operator!=(const FrustumVolume &lhs, const FrustumVolume &rhs);
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const FrustumVolume &frustum);

OSG_END_NAMESPACE

#endif
