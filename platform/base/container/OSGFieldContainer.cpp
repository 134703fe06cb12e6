#include "OSGFieldContainer.h"

#include <cstring>

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

/// The head of a container's memory.
struct Head
{
    Int32 refCount;
    UInt32 id;
};
static_assert(sizeof(Head) == FieldContainerPtr::HeadSize, "a head is a count and an id");

Head &headOf(UInt8 *memory)
{
    return *reinterpret_cast<Head *>(memory);
}

} // namespace

FieldContainerType FieldContainer::_type("FieldContainer", "", nullptr, nullptr, nullptr, nullptr, 0, false);

DataType FieldDataTraits<FieldContainerPtr>::_type("FieldContainerPtr", "", 0);
template class SField<FieldContainerPtr>;
template class MField<FieldContainerPtr>;

FieldContainerPtr findContainer(UInt32 containerId)
{
    return FieldContainerFactory::the()->getContainer(containerId);
}

void putContainerId(BinaryDataHandler &memory, const FieldContainerPtr &container)
{
    const UInt32 id = container.getFieldContainerId();
    memory.putValue(id);
}

UInt32 getContainerId(BinaryDataHandler &memory)
{
    UInt32 id = 0;
    memory.getValue(id);
    return id;
}

FieldContainerPtr::FieldContainerPtr(const FieldContainer &object)
    : FieldContainerPtr(&object, object.getContainerSize())
{
}

FieldContainerPtr::FieldContainerPtr(const FieldContainer *object)
    : FieldContainerPtr(object, object != nullptr ? object->getContainerSize() : 0)
{
}

UInt32 FieldContainerPtr::getFieldContainerId() const
{
    return _storeP == nullptr ? 0 : headOf(getHead()).id;
}

Int32 FieldContainerPtr::getRefCount() const
{
    return _storeP == nullptr ? 0 : __atomic_load_n(&headOf(getHead()).refCount, __ATOMIC_RELAXED);
}

void FieldContainerPtr::addRef() const
{
    if(_storeP != nullptr)
        __atomic_add_fetch(&headOf(getHead()).refCount, 1, __ATOMIC_RELAXED);
}

void FieldContainerPtr::subRef() const
{
    if(_storeP == nullptr || __atomic_sub_fetch(&headOf(getHead()).refCount, 1, __ATOMIC_ACQ_REL) > 0)
        return;
    const UInt32 id = headOf(getHead()).id;
    Thread::getCurrentChangeList()->addDestroyed(id);
    // Another aspect may still stand on the container, and may yet take a reference of its own.
    if(ThreadManager::getNumForeignAspectThreads() != 0)
        Thread::getCurrentChangeList()->endWhenCleared(id);
    else
        FieldContainerFactory::freeMemory(FieldContainerFactory::the()->endUnreferenced(id));
}

void addRefCP(const FieldContainerPtr &container)
{
    if(container == NullFC)
        return;
    container.addRef();
    Thread::getCurrentChangeList()->addAddRefd(container.getFieldContainerId());
}

void subRefCP(const FieldContainerPtr &container)
{
    if(container == NullFC)
        return;
    // Noted first: where this is the last reference, the end of the container wipes its entry.
    Thread::getCurrentChangeList()->addSubRefd(container.getFieldContainerId());
    container.subRef();
}

void endEditCP(const FieldContainerPtr &container, BitVector whichField, UInt32 origin)
{
    if(container == NullFC)
        return;
    Thread::getCurrentChangeList()->addChanged(container, whichField);
    container->changed(whichField, origin);
}

void endEditNotChangedCP(const FieldContainerPtr &container, BitVector whichField)
{
    if(container != NullFC)
        Thread::getCurrentChangeList()->addChanged(container, whichField);
}

FieldContainer::~FieldContainer() = default;

UInt32 FieldContainer::getBinSize(const BitVector &)
{
    return 0;
}

void FieldContainer::copyToBin(BinaryDataHandler &, const BitVector &) {}

void FieldContainer::copyFromBin(BinaryDataHandler &, const BitVector &) {}

void FieldContainer::changed(BitVector, UInt32) {}

void FieldContainer::dump(UInt32, const BitVector) const {}

void FieldContainer::executeSync(FieldContainer &, const BitVector &) {}

void FieldContainer::onCreate(const FieldContainer *) {}

void FieldContainer::onDestroy() {}

Field *FieldContainer::getField(UInt32 fieldId)
{
    const FieldDescription *const description = getType().getFieldDescription(fieldId);
    return description == nullptr ? nullptr : description->access(*this);
}

Field *FieldContainer::getField(const Char8 *name)
{
    const FieldDescription *const description = getType().findFieldDescription(name);
    return description == nullptr ? nullptr : description->access(*this);
}

FieldContainerPtr FieldContainer::getPtr() const
{
    return FieldContainerPtr(*this);
}

void *FieldContainer::allocate(std::size_t objectSize)
{
    return ::operator new(ThreadManager::getNumAspects() * objectSize + FieldContainerPtr::HeadSize);
}

void FieldContainer::enter(FieldContainerPtr container)
{
    Head &head = headOf(container.getHead());
    head.refCount = 0;
    head.id = FieldContainerFactory::the()->registerFieldContainer(container);
    Thread::getCurrentChangeList()->addCreated(head.id);
}

FieldContainerPtr FieldContainerFactory::endUnreferenced(UInt32 containerId)
{
    const FieldContainerPtr container = takeUnreferenced(containerId);
    if(container != NullFC)
        container->onDestroy();
    return container;
}

void FieldContainerFactory::freeMemory(const FieldContainerPtr &container)
{
    if(container == NullFC)
        return;
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
        container.getAspectCPtr(aspect)->~FieldContainer();
    ::operator delete(reinterpret_cast<UInt8 *>(container.getAspectCPtr(0)) - FieldContainerPtr::HeadSize);
}

// Decided under the factory's lock: of two threads that find the container without a reference, one ends it.
bool FieldContainerPtr::markEnded() const
{
    Int32 &count = headOf(getHead()).refCount;
    if(__atomic_load_n(&count, __ATOMIC_ACQUIRE) > 0)
        return false;
    // What the container lets go of may refer back to it; such a late reference must not end it twice.
    __atomic_store_n(&count, Int32(1) << 30, __ATOMIC_RELAXED);
    return true;
}

OSG_END_NAMESPACE
