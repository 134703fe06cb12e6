#ifndef TESSALY_NURBS_CONTROLVOLUME_H
#define TESSALY_NURBS_CONTROLVOLUME_H

/// \file
/// The volume of a core that is told by its control points.

#include <OpenSG/OSGGeoPositions.h>
#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

/// The box or sphere around the control points alone, whatever was in the volume. Without control points it is
/// valid and empty.
inline void fitVolume(const GeoPositionsPtr &controlPoints, Volume &volume)
{
    if(!volume.isStatic())
        volume.setValid();
    volume.setEmpty();
    if(controlPoints == NullFC)
        return;
    for(UInt32 i = 0; i < controlPoints->getSize(); ++i)
        volume.extendBy(controlPoints->getValue(i));
}

OSG_END_NAMESPACE

#endif
