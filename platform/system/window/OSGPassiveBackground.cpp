/// \file
/// Clears nothing.

#include "OSGPassiveBackground.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void PassiveBackground::initMethod() {}

PassiveBackground::PassiveBackground() = default;

PassiveBackground::PassiveBackground(const PassiveBackground &source) : Inherited(source) {}

PassiveBackground::~PassiveBackground() = default;

void PassiveBackground::clear(DrawActionBase *, Viewport *) {}

void PassiveBackground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PassiveBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PassiveBackground NI" << std::endl;
}

OSG_END_NAMESPACE
