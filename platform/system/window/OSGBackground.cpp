/// \file
/// What clears a viewport.

#include "OSGBackground.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void Background::initMethod() {}

Background::Background() = default;

Background::Background(const Background &source) : Inherited(source) {}

Background::~Background() = default;

void Background::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Background::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Background NI" << std::endl;
}

OSG_END_NAMESPACE
