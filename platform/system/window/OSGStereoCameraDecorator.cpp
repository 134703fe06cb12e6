/// \file
/// What the two eyes of a stereo pair have in common.

#include "OSGStereoCameraDecorator.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void StereoCameraDecorator::initMethod() {}

StereoCameraDecorator::StereoCameraDecorator() = default;

StereoCameraDecorator::StereoCameraDecorator(const StereoCameraDecorator &source) : Inherited(source) {}

StereoCameraDecorator::~StereoCameraDecorator() = default;

void StereoCameraDecorator::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void StereoCameraDecorator::dump(UInt32, const BitVector) const
{
    SLOG << "Dump StereoCameraDecorator NI" << std::endl;
}

OSG_END_NAMESPACE
