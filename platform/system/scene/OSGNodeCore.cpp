#include "OSGNodeCore.h"

#include "OSGLog.h"
#include "OSGNode.h"

OSG_BEGIN_NAMESPACE

void NodeCore::initMethod() {}

NodeCore::NodeCore() = default;

NodeCore::NodeCore(const NodeCore &source) : Inherited(source)
{
    _mfParents.clear();
}

NodeCore::~NodeCore() = default;

void NodeCore::accumulateMatrix(Matrix &) {}

void NodeCore::adjustVolume(Volume &) {}

void NodeCore::invalidateVolume()
{
    for(const NodePtr &parent : _mfParents)
        if(parent != NullFC)
            parent->invalidateVolume();
}

void NodeCore::addParent(const NodePtr &parent)
{
    _mfParents.push_back(parent);
    endEditNotChangedCP(getPtr(), ParentsFieldMask);
}

void NodeCore::subParent(const NodePtr &parent)
{
    const auto found = _mfParents.find(parent);
    if(found != _mfParents.end())
        _mfParents.erase(found);
    endEditNotChangedCP(getPtr(), ParentsFieldMask);
}

void NodeCore::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void NodeCore::dump(UInt32, const BitVector) const
{
    SLOG << "Dump NodeCore NI" << std::endl;
}

OSG_END_NAMESPACE
