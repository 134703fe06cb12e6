/// \file
/// Sends the finished picture of a viewport through filters.

#include "OSGDisplayFilterForeground.h"

#include "OSGDisplayFilter.h"
#include "OSGDisplayFilterGroup.h"
#include "OSGDrawActionBase.h"
#include "OSGLog.h"
#include "OSGThread.h"

OSG_BEGIN_NAMESPACE

void DisplayFilterForeground::initMethod() {}

DisplayFilterForeground::DisplayFilterForeground() = default;

// A copy sets its filters up itself.
DisplayFilterForeground::DisplayFilterForeground(const DisplayFilterForeground &source) : Inherited(source) {}

DisplayFilterForeground::~DisplayFilterForeground() = default;

void DisplayFilterForeground::onCreate(const DisplayFilterForeground *source)
{
    Inherited::onCreate(source);
    _heldFilters.follow(_mfFilter, ChangedOrigin::External);
}

void DisplayFilterForeground::onDestroy()
{
    // The groups are of the aspect that draws.
    const DisplayFilterForegroundPtr self(*this);
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
        self.getAspectCPtr(aspect)->_groups.clear();
    _heldFilters.release();
    Inherited::onDestroy();
}

DisplayFilterGroup *DisplayFilterForeground::findReadbackGroup(const std::string &name)
{
    for(const std::unique_ptr<DisplayFilterGroup> &group : _groups)
        if(group->getName() == name)
            return group.get();
    _groups.push_back(std::make_unique<DisplayFilterGroup>(name));
    return _groups.back().get();
}

std::vector<DisplayFilterGroup *> DisplayFilterForeground::getGroups() const
{
    std::vector<DisplayFilterGroup *> result;
    for(const std::unique_ptr<DisplayFilterGroup> &group : _groups)
        result.push_back(group.get());
    return result;
}

std::vector<DisplayFilterPtr> DisplayFilterForeground::enabledFilters() const
{
    std::vector<DisplayFilterPtr> result;
    for(const DisplayFilterPtr &filter : _mfFilter)
        if(filter != NullFC && filter->getEnabled())
            result.push_back(filter);
    return result;
}

void DisplayFilterForeground::draw(DrawActionBase *action, Viewport *port)
{
    if(!getActive() || action == nullptr || port == nullptr)
        return;
    const std::vector<DisplayFilterPtr> filters = enabledFilters();
    if(_outdated || filters != _setUp)
    {
        if(_mfFilter.find(DisplayFilterPtr()) != _mfFilter.end())
            FWARNING(("DisplayFilterForeground::draw: a filter is null\n"));
        _outdated = false;
        _setUp = filters;
        _groups.clear();
        for(const DisplayFilterPtr &filter : filters)
            filter->createFilter(this, port);
    }
    for(const DisplayFilterPtr &filter : filters)
        filter->updateFilter(this, port);
    for(const std::unique_ptr<DisplayFilterGroup> &group : _groups)
        group->draw(action, port);
}

void DisplayFilterForeground::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & FilterFieldMask) != 0)
    {
        _heldFilters.follow(_mfFilter, origin);
        _outdated = true;
    }
    Inherited::changed(whichField, origin);
}

void DisplayFilterForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump DisplayFilterForeground NI" << std::endl;
}

OSG_END_NAMESPACE
