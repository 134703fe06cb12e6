/// \file
/// What is drawn over a viewport's scene.

#include "OSGForeground.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void Foreground::initMethod() {}

Foreground::Foreground() = default;

Foreground::Foreground(const Foreground &source) : Inherited(source) {}

Foreground::~Foreground() = default;

void Foreground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Foreground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Foreground NI" << std::endl;
}

OSG_END_NAMESPACE
