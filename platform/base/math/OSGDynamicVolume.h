#ifndef _OSGDYNAMICVOLUME_H_
#define _OSGDYNAMICVOLUME_H_

/// \file
/// The bounding volume of a node, whose kind can be changed.

#include <iosfwd>

#include "OSGBoxVolume.h"
#include "OSGSphereVolume.h"

OSG_BEGIN_NAMESPACE

/// Holds a box or a sphere and does whatever that does; states are those of the volume it holds.
class OSG_BASELIB_DLLMAPPING DynamicVolume : public Volume
{
  public:
    /// The kinds of volumes.
    enum Type
    {
        BOX_VOLUME,
        SPHERE_VOLUME
    };

    /// Empty.
    explicit DynamicVolume(Type type = BOX_VOLUME) : _type(type) {}
    /// A copy has the same kind and state.
    DynamicVolume(const DynamicVolume &) = default;
    DynamicVolume &operator=(const DynamicVolume &) = default;

    Volume &getInstance() override;
    const Volume &getInstance() const override;

    /// The kind.
    Type getType() const { return _type; }
    /// The new kind starts valid and empty.
    void setVolumeType(Type type);
    /// The new kind bounds what the old one does, and has its states.
    void morphToType(Type type);

    void setState(UInt16 state) override;
    UInt16 getState() const override;

    using Volume::getCenter;
    /// The middle.
    void getCenter(Pnt3f &center) const override;
    Real32 getScalarVolume() const override;
    void getBounds(Pnt3f &min, Pnt3f &max) const override;

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
    Type _type;
    BoxVolume _box;
    SphereVolume _sphere;
};

/// True if kind and shape are the same; states do not count.
OSG_BASELIB_DLLMAPPING bool operator==(const DynamicVolume &lhs, const DynamicVolume &rhs);
OSG_BASELIB_DLLMAPPING bool operator!=(const DynamicVolume &lhs, const DynamicVolume &rhs);
OSG_BASELIB_DLLMAPPING std::ostream &operator<<(std::ostream &os, const DynamicVolume &volume);

OSG_END_NAMESPACE

#endif
