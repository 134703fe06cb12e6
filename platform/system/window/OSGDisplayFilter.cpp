/// \file
/// A stage of the processing of a finished picture.

#include "OSGDisplayFilter.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void DisplayFilter::initMethod() {}

DisplayFilter::DisplayFilter() = default;

DisplayFilter::DisplayFilter(const DisplayFilter &source) : Inherited(source) {}

DisplayFilter::~DisplayFilter() = default;

void DisplayFilter::updateFilter(DisplayFilterForeground *, Viewport *) {}

void DisplayFilter::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void DisplayFilter::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DisplayFilter NI" << std::endl;
}

OSG_END_NAMESPACE
