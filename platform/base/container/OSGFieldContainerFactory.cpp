#include "OSGFieldContainerFactory.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "OSGFieldContainer.h"
#include "OSGFieldContainerType.h"

OSG_BEGIN_NAMESPACE

struct FieldContainerFactory::Content
{
    // Initialising a class makes containers and asks for its parent class, all on one thread.
    std::recursive_mutex typeMutex;
    std::vector<FieldContainerType *> types;
    std::vector<FieldContainerType *> newTypes;
    std::map<std::string, UInt16> groups;
    std::atomic<bool> initialized{false};
    std::atomic<bool> hasNewTypes{false};

    std::shared_mutex containerMutex;
    std::unordered_map<UInt32, FieldContainerPtr> containers;
    UInt32 lastId = 0;
};

FieldContainerFactory::FieldContainerFactory() : _content(new Content) {}

// Never destroyed, as records of classes leave it at exit in an order that nobody can tell.
FieldContainerFactory *FieldContainerFactory::the()
{
    static FieldContainerFactory *const factory = new FieldContainerFactory;
    return factory;
}

bool FieldContainerFactory::isInitialized() const
{
    return _content->initialized;
}

bool FieldContainerFactory::initialize()
{
    _content->initialized = true;
    initializeNewTypes();
    return true;
}

void FieldContainerFactory::initializeNewTypes()
{
    if(!_content->initialized || !_content->hasNewTypes)
        return;
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    while(!_content->newTypes.empty())
    {
        FieldContainerType *const type = _content->newTypes.front();
        _content->newTypes.erase(_content->newTypes.begin());
        type->initialize();
    }
    _content->hasNewTypes = false;
}

bool FieldContainerFactory::terminate()
{
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    for(auto it = _content->types.rbegin(); it != _content->types.rend(); ++it)
        (*it)->terminate();
    _content->newTypes = _content->types;
    _content->hasNewTypes = !_content->types.empty();
    _content->initialized = false;
    return true;
}

void FieldContainerFactory::addType(FieldContainerType *type)
{
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    _content->types.push_back(type);
    _content->newTypes.push_back(type);
    _content->hasNewTypes = true;
}

void FieldContainerFactory::removeType(FieldContainerType *type)
{
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    for(std::vector<FieldContainerType *> *list : {&_content->types, &_content->newTypes})
        list->erase(std::remove(list->begin(), list->end(), type), list->end());
}

UInt16 FieldContainerFactory::groupId(const std::string &name)
{
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    return _content->groups.emplace(name, UInt16(_content->groups.size() + 1)).first->second;
}

FieldContainerType *FieldContainerFactory::findType(const Char8 *name)
{
    initializeNewTypes();
    return dynamic_cast<FieldContainerType *>(TypeFactory::the()->findType(name));
}

FieldContainerType *FieldContainerFactory::findType(UInt32 typeId)
{
    initializeNewTypes();
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    for(FieldContainerType *type : _content->types)
        if(type->getId() == typeId)
            return type;
    return nullptr;
}

UInt32 FieldContainerFactory::getNumTypes() const
{
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    return UInt32(_content->types.size());
}

std::vector<FieldContainerType *> FieldContainerFactory::getTypes()
{
    initializeNewTypes();
    std::lock_guard<std::recursive_mutex> lock(_content->typeMutex);
    std::vector<FieldContainerType *> types = _content->types;
    std::sort(types.begin(), types.end(),
              [](const FieldContainerType *a, const FieldContainerType *b) { return a->getId() < b->getId(); });
    return types;
}

FieldContainerPtr FieldContainerFactory::createFieldContainer(const Char8 *name)
{
    const FieldContainerType *const type = findType(name);
    return type == nullptr ? FieldContainerPtr() : type->createFieldContainer();
}

UInt32 FieldContainerFactory::registerFieldContainer(const FieldContainerPtr &container)
{
    std::unique_lock<std::shared_mutex> lock(_content->containerMutex);
    do
    {
        ++_content->lastId;
    } while(_content->lastId == 0 || _content->containers.count(_content->lastId) != 0);
    _content->containers.emplace(_content->lastId, container);
    return _content->lastId;
}

void FieldContainerFactory::unregisterFieldContainer(UInt32 containerId)
{
    std::unique_lock<std::shared_mutex> lock(_content->containerMutex);
    _content->containers.erase(containerId);
}

FieldContainerPtr FieldContainerFactory::getContainer(UInt32 containerId) const
{
    std::shared_lock<std::shared_mutex> lock(_content->containerMutex);
    const auto found = _content->containers.find(containerId);
    return found == _content->containers.end() ? FieldContainerPtr() : found->second;
}

FieldContainerPtr FieldContainerFactory::takeUnreferenced(UInt32 containerId)
{
    std::unique_lock<std::shared_mutex> lock(_content->containerMutex);
    const auto found = _content->containers.find(containerId);
    if(found == _content->containers.end() || !found->second.markEnded())
        return FieldContainerPtr();
    const FieldContainerPtr container = found->second;
    _content->containers.erase(found);
    return container;
}

UInt32 FieldContainerFactory::getNumContainers() const
{
    std::shared_lock<std::shared_mutex> lock(_content->containerMutex);
    return UInt32(_content->containers.size());
}

OSG_END_NAMESPACE
