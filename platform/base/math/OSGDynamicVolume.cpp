/// \file
/// The bounding volume whose kind can be changed: everything goes to the one that it holds.

#include "OSGDynamicVolume.h"

#include <ostream>

#include "OSGLine.h"
#include "OSGVolumeFunctions.h"

OSG_BEGIN_NAMESPACE

Volume &DynamicVolume::getInstance()
{
    return _type == BOX_VOLUME ? static_cast<Volume &>(_box) : static_cast<Volume &>(_sphere);
}

const Volume &DynamicVolume::getInstance() const
{
    return _type == BOX_VOLUME ? static_cast<const Volume &>(_box) : static_cast<const Volume &>(_sphere);
}

void DynamicVolume::setVolumeType(Type type)
{
    _type = type;
    if (type == BOX_VOLUME)
        _box = BoxVolume();
    else
        _sphere = SphereVolume();
}

void DynamicVolume::morphToType(Type type)
{
    if (type == _type)
        return;

    // the states are put back last, as those of an invalid or infinite volume would keep the shape from being
    // taken
    const UInt16 state = getState();
    setState(static_cast<UInt16>((state & OSGEMPTY) | OSGVALID));
    if (type == BOX_VOLUME)
    {
        _box = BoxVolume();
        extend(_box, _sphere);
    }
    else
    {
        _sphere = SphereVolume();
        extend(_sphere, _box);
    }
    _type = type;
    setState(state);
}

void DynamicVolume::setState(UInt16 state) { getInstance().setState(state); }

UInt16 DynamicVolume::getState() const { return getInstance().getState(); }

void DynamicVolume::getCenter(Pnt3f &center) const { getInstance().getCenter(center); }

Real32 DynamicVolume::getScalarVolume() const { return getInstance().getScalarVolume(); }

void DynamicVolume::getBounds(Pnt3f &min, Pnt3f &max) const { getInstance().getBounds(min, max); }

void DynamicVolume::extendBy(const Pnt3f &point) { getInstance().extendBy(point); }

void DynamicVolume::extendBy(const Volume &volume) { getInstance().extendBy(volume); }

bool DynamicVolume::intersect(const Pnt3f &point) const { return getInstance().intersect(point); }

bool DynamicVolume::intersect(const Line &line, Real32 &enter, Real32 &exit) const
{
    return getInstance().intersect(line, enter, exit);
}

bool DynamicVolume::intersect(const Volume &volume) const { return getInstance().intersect(volume); }

bool DynamicVolume::isOnSurface(const Pnt3f &point) const { return getInstance().isOnSurface(point); }

void DynamicVolume::transform(const Matrix &matrix) { getInstance().transform(matrix); }

void DynamicVolume::dump(UInt32 indent, BitVector flags) const { getInstance().dump(indent, flags); }

bool operator==(const DynamicVolume &lhs, const DynamicVolume &rhs)
{
    if (lhs.getType() != rhs.getType())
        return false;
    if (lhs.getType() == DynamicVolume::BOX_VOLUME)
        return static_cast<const BoxVolume &>(lhs.getInstance()) ==
               static_cast<const BoxVolume &>(rhs.getInstance());
    return static_cast<const SphereVolume &>(lhs.getInstance()) ==
           static_cast<const SphereVolume &>(rhs.getInstance());
}

bool operator!=(const DynamicVolume &lhs, const DynamicVolume &rhs) { return !(lhs == rhs); }

std::ostream &operator<<(std::ostream &os, const DynamicVolume &volume)
{
    if (volume.getType() == DynamicVolume::BOX_VOLUME)
        return os << static_cast<const BoxVolume &>(volume.getInstance());
    return os << static_cast<const SphereVolume &>(volume.getInstance());
}

OSG_END_NAMESPACE
