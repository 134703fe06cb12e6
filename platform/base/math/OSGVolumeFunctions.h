#ifndef _OSGVOLUMEFUNCTIONS_H_
#define _OSGVOLUMEFUNCTIONS_H_

/// \file
/// What happens between two bounding volumes of whatever kinds.

#include "OSGBaseTypes.h"

OSG_BEGIN_NAMESPACE

class BoxVolume;
class FrustumVolume;
class SphereVolume;
class Volume;

/// srcVol grows to hold vol. A srcVol that is invalid and not empty, or infinite, stays as it is; an empty or
/// invalid vol adds nothing; an infinite one makes srcVol infinite; an empty srcVol takes over vol's shape,
/// or the smallest of its own kind around it. A volume that holds another is looked into.
OSG_BASELIB_DLLMAPPING void extend(BoxVolume &srcVol, const BoxVolume &vol);
OSG_BASELIB_DLLMAPPING void extend(BoxVolume &srcVol, const SphereVolume &vol);
OSG_BASELIB_DLLMAPPING void extend(BoxVolume &srcVol, const FrustumVolume &vol);
OSG_BASELIB_DLLMAPPING void extend(BoxVolume &srcVol, const Volume &vol);
OSG_BASELIB_DLLMAPPING void extend(SphereVolume &srcVol, const BoxVolume &vol);
OSG_BASELIB_DLLMAPPING void extend(SphereVolume &srcVol, const SphereVolume &vol);
OSG_BASELIB_DLLMAPPING void extend(SphereVolume &srcVol, const FrustumVolume &vol);
OSG_BASELIB_DLLMAPPING void extend(SphereVolume &srcVol, const Volume &vol);
OSG_BASELIB_DLLMAPPING void extend(FrustumVolume &srcVol, const Volume &vol);
OSG_BASELIB_DLLMAPPING void extend(Volume &srcVol, const Volume &vol);

/// True if both have a point in common, borders included; with a frustum conservatively, see there. Empty and
/// invalid volumes meet nothing, infinite ones everything else.
OSG_BASELIB_DLLMAPPING bool intersect(const BoxVolume &vol1, const BoxVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const BoxVolume &vol1, const SphereVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const BoxVolume &vol1, const FrustumVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const SphereVolume &vol1, const BoxVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const SphereVolume &vol1, const SphereVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const SphereVolume &vol1, const FrustumVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const FrustumVolume &vol1, const BoxVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const FrustumVolume &vol1, const SphereVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const FrustumVolume &vol1, const FrustumVolume &vol2);
OSG_BASELIB_DLLMAPPING bool intersect(const Volume &vol1, const Volume &vol2);

OSG_END_NAMESPACE

#endif
