#ifndef TESSALY_FILTER_ASPECTMEMBERS_H
#define TESSALY_FILTER_ASPECTMEMBERS_H

/// \file
/// The end of what display filters hold outside of their fields.

#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGThread.h>

namespace tessaly
{

/// Gives back what the aspects' copies of a filter hold in that member: a filter is set up by the aspect that
/// draws, and may end in any.
template <class FilterPtrT, class FilterT, class PtrT>
void clearInAllAspects(const FilterPtrT &filter, PtrT FilterT::*member)
{
    for(osg::UInt32 aspect = 0; aspect < osg::ThreadManager::getNumAspects(); ++aspect)
        osg::clearRefCP(filter.getAspectCPtr(aspect)->*member);
}

} // namespace tessaly

#endif
