#ifndef TESSALY_NURBS_CONTROLLINK_H
#define TESSALY_NURBS_CONTROLLINK_H

/// \file
/// The link of a core to its control points: a reference on the property, and the property knows the core.

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGGeoPositions.h>
#include <OpenSG/OSGSField.h>
#include <OpenSG/OSGVolume.h>

OSG_BEGIN_NAMESPACE

/// Enters the core in the property, for its field of that id.
template <class PtrT>
void enterControlLink(const PtrT &property, const FieldContainerPtr &core, UInt32 fieldId)
{
    if(property == NullFC)
        return;
    property->addParent(core, UInt16(fieldId));
    endEditCP(property, Attachment::ParentsFieldMask);
}

/// Puts `value` into the core's field. The new property is referenced first, so that the same one may be set again.
template <class PtrT>
void setControlLink(SField<PtrT> &field, const PtrT &value, const FieldContainerPtr &core, UInt32 fieldId)
{
    const PtrT taken = value;
    addRefCP(taken);
    const PtrT old = field.getValue();
    if(old != NullFC)
    {
        old->subParent(core);
        endEditCP(old, Attachment::ParentsFieldMask);
        subRefCP(old);
    }
    enterControlLink(taken, core, fieldId);
    field.setValue(taken);
}

/// Makes the link good where the field was written without its setter, as the bits of ChangedOrigin tell.
template <class PtrT>
void repairControlLink(SField<PtrT> &field, const FieldContainerPtr &core, UInt32 fieldId, UInt32 origin)
{
    if((origin & ChangedOrigin::Abstract) == 0)
        return;
    const PtrT value = field.getValue();
    if((origin & ChangedOrigin::AbstrCheckValid) != 0)
    {
        if(value == NullFC || value->findParent(core) != -1)
            return;
    }
    else if((origin & ChangedOrigin::AbstrIncRefCount) != 0)
    {
        addRefCP(value);
        return;
    }
    // Nothing is known yet of what is to be let go.
    field.setValue(NullFC);
    setControlLink(field, value, core, fieldId);
}

/// The box or sphere around the control points alone, whatever was in the volume. Without control points it is valid and empty.
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
