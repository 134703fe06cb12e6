/// \file
/// What all bounding volumes have in common.

#include "OSGVolume.h"

#include "OSGLine.h"

OSG_BEGIN_NAMESPACE

Volume::~Volume() = default;

void Volume::setState(UInt16 state) { _state = state; }

UInt16 Volume::getState() const { return _state; }

void Volume::setStateBit(UInt16 bit, bool value)
{
    const UInt32 state = getState();
    setState(static_cast<UInt16>(value ? state | bit : state & ~static_cast<UInt32>(bit)));
}

Volume &Volume::getInstance() { return *this; }

const Volume &Volume::getInstance() const { return *this; }

Pnt3f Volume::getCenter() const
{
    Pnt3f center;
    getCenter(center);
    return center;
}

bool Volume::intersect(const Line &line) const
{
    Real32 enter;
    Real32 exit;
    return intersect(line, enter, exit);
}

OSG_END_NAMESPACE
