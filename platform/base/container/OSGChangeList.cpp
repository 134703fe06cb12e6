#include "OSGChangeList.h"

#include <algorithm>

#include "OSGFieldContainer.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

ChangeList::ChangeList() : _aspect(Thread::getAspect()) {}

ChangeList::~ChangeList()
{
    clearAll();
    freeEnded();
}

ChangeList::Entry &ChangeList::entry(UInt32 containerId)
{
    Entry &found = _entries[containerId];
    if(found.order == 0)
        found.order = ++_lastOrder;
    return found;
}

void ChangeList::addCreated(UInt32 containerId)
{
    if(!_readOnly)
        entry(containerId).created = true;
}

void ChangeList::addChanged(const FieldContainerPtr &container, BitVector whichField)
{
    if(!_readOnly && container != NullFC)
        entry(container.getFieldContainerId()).whichField |= whichField;
}

void ChangeList::addAddRefd(UInt32 containerId)
{
    if(!_readOnly)
        ++entry(containerId).addRefd;
}

void ChangeList::addSubRefd(UInt32 containerId)
{
    if(!_readOnly)
        ++entry(containerId).subRefd;
}

void ChangeList::addDestroyed(UInt32 containerId)
{
    const auto found = _entries.find(containerId);
    const bool createdHere = found != _entries.end() && found->second.created;
    if(found != _entries.end())
        _entries.erase(found);
    if(!_readOnly && !createdHere)
        _destroyed.push_back(containerId);
}

std::vector<std::pair<UInt32, ChangeList::Entry>> ChangeList::inOrder() const
{
    std::vector<std::pair<UInt32, Entry>> sorted(_entries.begin(), _entries.end());
    std::sort(sorted.begin(), sorted.end(),
              [](const auto &a, const auto &b) { return a.second.order < b.second.order; });
    return sorted;
}

ChangeList::IdStore ChangeList::getCreated() const
{
    IdStore result;
    for(const auto &item : inOrder())
        if(item.second.created)
            result.push_back(item.first);
    return result;
}

ChangeList::ChangedStore ChangeList::getChanged() const
{
    ChangedStore result;
    for(const auto &item : inOrder())
        if(item.second.whichField != 0)
            result.emplace_back(item.first, item.second.whichField);
    return result;
}

ChangeList::IdStore ChangeList::getAddRefd() const
{
    IdStore result;
    for(const auto &item : inOrder())
        result.insert(result.end(), item.second.addRefd, item.first);
    return result;
}

ChangeList::IdStore ChangeList::getSubRefd() const
{
    IdStore result;
    for(const auto &item : inOrder())
        result.insert(result.end(), item.second.subRefd, item.first);
    return result;
}

void ChangeList::applyToCurrent()
{
    const UInt32 toAspect = Thread::getAspect();
    if(toAspect == _aspect)
        return;

    // All fields first, so that every `changed` finds the scene whole.
    const ChangedStore changes = getChanged();
    for(const ChangedEntry &change : changes)
    {
        const FieldContainerPtr container = FieldContainerFactory::the()->getContainer(change.first);
        if(container != NullFC)
            container.getAspectCPtr(toAspect)->executeSync(*container.getAspectCPtr(_aspect), change.second);
    }
    for(const ChangedEntry &change : changes)
    {
        const FieldContainerPtr container = FieldContainerFactory::the()->getContainer(change.first);
        if(container != NullFC)
            container->changed(change.second, ChangedOrigin::Sync);
    }
}

void ChangeList::applyAndClear()
{
    applyToCurrent();
    clearAll();
}

void ChangeList::merge(const ChangeList &other)
{
    if(_readOnly || &other == this)
        return;
    for(const auto &item : other.inOrder())
    {
        Entry &mine = entry(item.first);
        mine.created = mine.created || item.second.created;
        mine.whichField |= item.second.whichField;
        mine.addRefd += item.second.addRefd;
        mine.subRefd += item.second.subRefd;
    }
    for(const UInt32 id : other._destroyed)
        addDestroyed(id);
}

void ChangeList::clearAll()
{
    _entries.clear();
    _destroyed.clear();
    _lastOrder = 0;
    freeEnded();
    // What ends may let go of further containers, which then join the list again.
    while(!_unreferenced.empty())
    {
        IdStore unreferenced;
        unreferenced.swap(_unreferenced);
        for(const UInt32 id : unreferenced)
            _ended.push_back(FieldContainerFactory::the()->endUnreferenced(id));
    }
    if(ThreadManager::getNumForeignAspectThreads() == 0)
        freeEnded();
}

void ChangeList::freeEnded()
{
    std::vector<FieldContainerPtr> ended;
    ended.swap(_ended);
    for(const FieldContainerPtr &container : ended)
        FieldContainerFactory::freeMemory(container);
}

void ChangeList::dump() const
{
    for(const auto &item : inOrder())
        SLOG << "container " << item.first << (item.second.created ? " created" : "") << " changed " << std::hex
             << item.second.whichField << std::dec << " references +" << item.second.addRefd << " -"
             << item.second.subRefd << std::endl;
    for(const UInt32 id : _destroyed)
        SLOG << "container " << id << " destroyed" << std::endl;
}

OSG_END_NAMESPACE
