#include "OSGAttachment.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void Attachment::initMethod() {}

Attachment::Attachment() = default;

// A copy is not attached to anything yet.
Attachment::Attachment(const Attachment &source) : Inherited(source)
{
    _mfParents.clear();
}

Attachment::~Attachment() = default;

void Attachment::addParent(const FieldContainerPtr &parent, UInt16 storedInFieldId)
{
    FieldContainerPtr entry = parent;
    entry.setParentFieldPos(storedInFieldId);
    _mfParents.push_back(entry);
}

void Attachment::subParent(const FieldContainerPtr &parent)
{
    const auto found = _mfParents.find(parent);
    if(found != _mfParents.end())
        _mfParents.erase(found);
}

Int32 Attachment::findParent(const FieldContainerPtr &parent) const
{
    const auto found = _mfParents.find(parent);
    return found == _mfParents.end() ? -1 : Int32(found - _mfParents.begin());
}

void Attachment::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
    // A new parent is no change of what the parents see.
    if((whichField & ~ParentsFieldMask) == 0)
        return;
    // By index: a parent may let go of this while it is told.
    for(UInt32 i = 0; i < _mfParents.size(); ++i)
    {
        const FieldContainerPtr parent = _mfParents[i];
        const UInt16 position = parent.getParentFieldPos();
        if(parent != NullFC && position != FieldContainerPtr::InvalidParentEPos)
            parent->changed(BitVector(1) << position, ChangedOrigin::Child);
    }
}

void Attachment::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Attachment NI" << std::endl;
}

OSG_END_NAMESPACE
