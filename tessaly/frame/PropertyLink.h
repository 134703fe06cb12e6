#ifndef TESSALY_FRAME_PROPERTYLINK_H
#define TESSALY_FRAME_PROPERTYLINK_H

/// \file
/// The link of a core to a property: a reference on the property, and the property knows the core.

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGFieldContainer.h>
#include <OpenSG/OSGSField.h>

OSG_BEGIN_NAMESPACE

/// Enters the core in the property, for its field of that id.
template <class PtrT>
void enterPropertyLink(const PtrT &property, const FieldContainerPtr &core, UInt32 fieldId)
{
    if(property == NullFC)
        return;
    property->addParent(core, UInt16(fieldId));
    endEditCP(property, Attachment::ParentsFieldMask);
}

/// Puts `value` into the core's field. The new property is referenced first, so that the same one may be set
/// again.
template <class PtrT>
void setPropertyLink(SField<PtrT> &field, const PtrT &value, const FieldContainerPtr &core, UInt32 fieldId)
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
    enterPropertyLink(taken, core, fieldId);
    field.setValue(taken);
}

/// Makes the link good where the field was written without its setter, as the bits of ChangedOrigin tell.
template <class PtrT>
void repairPropertyLink(SField<PtrT> &field, const FieldContainerPtr &core, UInt32 fieldId, UInt32 origin)
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
    setPropertyLink(field, value, core, fieldId);
}

OSG_END_NAMESPACE

#endif
