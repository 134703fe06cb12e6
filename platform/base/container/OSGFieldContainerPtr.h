#ifndef _OSGFIELDCONTAINERPTR_H_
#define _OSGFIELDCONTAINERPTR_H_

/// \file
/// Pointers to containers: each use gives the copy of the calling thread's aspect.
///
/// A container's memory is one block: a head of 8 bytes (a 32-bit reference count, a 32-bit container id) and behind it
/// one object per aspect, each of the size that the pointer carries. A pointer never counts references by itself; those
/// who keep one call addRefCP and subRefCP.

#include "OSGThread.h"

OSG_BEGIN_NAMESPACE

class FieldContainer;

/// What NullFC is.
struct NullFieldContainerPtr
{
};

/// The pointer to no container.
constexpr NullFieldContainerPtr NullFC{};

/// The pointer to a container of any class, and the root of the tree of pointer types. As cheap to copy as two words.
class OSG_BASELIB_DLLMAPPING FieldContainerPtr
{
  public:
    /// What it points to.
    typedef FieldContainer StoredObjectType;

    /// How a parent is kept that does not know which of its fields holds the child.
    static constexpr UInt16 InvalidParentEPos = 0xFFFF;
    /// Bytes ahead of the objects: reference count and id.
    static constexpr std::size_t HeadSize = 8;

    FieldContainerPtr() = default;
    /// NullFC.
    FieldContainerPtr(NullFieldContainerPtr) {}
    /// The pointer to the container of which `object` is the copy of the calling thread's aspect.
    FieldContainerPtr(const FieldContainer &object);
    explicit FieldContainerPtr(const FieldContainer *object);

    /// The container on the aspect of the calling thread; null for NullFC.
    FieldContainer *operator->() const { return getCPtr(); }
    FieldContainer &operator*() const { return *getCPtr(); }
    FieldContainer *get() const { return getCPtr(); }
    FieldContainer *getCPtr() const { return reinterpret_cast<FieldContainer *>(getElemP()); }
    /// The copy of a given aspect; only for those who synchronise aspects.
    FieldContainer *getAspectCPtr(UInt32 aspect) const
    {
        return reinterpret_cast<FieldContainer *>(_storeP + std::size_t(aspect) * _containerSize);
    }

    /// Whether it is NullFC.
    bool operator!() const { return _storeP == nullptr; }
    /// Whether it is not NullFC.
    explicit operator bool() const { return _storeP != nullptr; }
    /// The same container, on whichever aspect; the order is that of addresses.
    bool operator==(const FieldContainerPtr &other) const { return _storeP == other._storeP; }
    bool operator!=(const FieldContainerPtr &other) const { return _storeP != other._storeP; }
    bool operator<(const FieldContainerPtr &other) const { return _storeP < other._storeP; }
    /// Whether it is NullFC, or is not.
    bool operator==(NullFieldContainerPtr) const { return _storeP == nullptr; }
    bool operator!=(NullFieldContainerPtr) const { return _storeP != nullptr; }

    /// 0 for NullFC.
    UInt32 getFieldContainerId() const;
    /// The reference count, 0 for NullFC.
    Int32 getRefCount() const;
    /// Bytes of one object, 0 for NullFC.
    UInt32 getContainerSize() const { return _containerSize; }

    /// The field of the parent that this pointer is kept in; only meaningful in the parents field of a child.
    UInt16 getParentFieldPos() const { return _parentFieldPos; }
    void setParentFieldPos(UInt16 position) { _parentFieldPos = position; }

    /// One reference more.
    void addRef() const;
    /// One reference less; at zero and below the container is destroyed, at once or, while threads run on several
    /// aspects, when the calling thread's change list is cleared and nobody has taken a reference until then.
    void subRef() const;

    /// The same pointer.
    static FieldContainerPtr dcast(const FieldContainerPtr &source) { return source; }

  protected:
    friend class FieldContainer;
    friend class FieldContainerFactory;

    /// True, once, for a container without a reference.
    bool markEnded() const;

    /// From the object on some aspect, whose size is containerSize.
    FieldContainerPtr(const FieldContainer *object, UInt32 containerSize)
    {
        if(object != nullptr)
        {
            _containerSize = containerSize;
            _storeP = const_cast<UInt8 *>(reinterpret_cast<const UInt8 *>(object)) -
                      std::size_t(Thread::getAspect()) * containerSize;
        }
    }

    /// The address on the calling thread's aspect; null for NullFC.
    UInt8 *getElemP() const
    {
        return _storeP == nullptr ? nullptr : _storeP + std::size_t(Thread::getAspect()) * _containerSize;
    }
    /// The address of the head.
    UInt8 *getHead() const { return _storeP - HeadSize; }

    UInt8 *_storeP = nullptr; ///< the object of aspect 0, behind the head
    UInt32 _containerSize = 0; ///< bytes of an object
    UInt16 _parentFieldPos = InvalidParentEPos; ///< which of the parents' fields, for fields of parents
};

/// The same, the other way round.
inline bool operator==(NullFieldContainerPtr, const FieldContainerPtr &ptr) { return !ptr; }
inline bool operator!=(NullFieldContainerPtr, const FieldContainerPtr &ptr) { return !!ptr; }

/// The pointer to a container of class X, whose parent class has the pointer type `BasePtr`: the pointer types form
/// the same tree as the classes.
template <class BasePtr, class X>
class FCPtr : public BasePtr
{
  public:
    /// What it points to.
    typedef X StoredObjectType;
    typedef BasePtr Inherited;

    FCPtr() = default;
    /// NullFC.
    FCPtr(NullFieldContainerPtr) {}
    /// The container that the object belongs to.
    FCPtr(const X &object) : BasePtr(object) {}
    explicit FCPtr(const X *object) : BasePtr(object) {}

    /// The container on the aspect of the calling thread; null for NullFC.
    X *operator->() const { return getCPtr(); }
    X &operator*() const { return *getCPtr(); }
    X *get() const { return getCPtr(); }
    // Containers have one base each, with FieldContainer first in memory, so the address is the same for all of them.
    /// The container on the aspect of the calling thread; null for NullFC.
    X *getCPtr() const { return reinterpret_cast<X *>(this->getElemP()); }
    /// The copy of a given aspect; only for those who synchronise aspects.
    X *getAspectCPtr(UInt32 aspect) const { return reinterpret_cast<X *>(BasePtr::getAspectCPtr(aspect)); }

    /// `source` if it points to an X, else NullFC.
    static FCPtr dcast(const FieldContainerPtr &source)
    {
        FCPtr result;
        if(source != NullFC && dynamic_cast<X *>(source.getCPtr()) != nullptr)
            static_cast<FieldContainerPtr &>(result) = source;
        return result;
    }
};

/// `source` as the pointer type T if it points to such a container, else NullFC.
template <class T>
inline T cast_dynamic(const FieldContainerPtr &source)
{
    return T::dcast(source);
}

/// One reference more, also noted in the calling thread's change list. Nothing for NullFC.
OSG_BASELIB_DLLMAPPING void addRefCP(const FieldContainerPtr &container);
/// One reference less, also noted in the change list; with the last one the container is destroyed, as
/// FieldContainerPtr::subRef tells. Nothing for NullFC.
OSG_BASELIB_DLLMAPPING void subRefCP(const FieldContainerPtr &container);
/// As subRefCP, and sets the pointer to NullFC.
template <class PtrT>
inline void clearRefCP(PtrT &container)
{
    PtrT old = container;
    container = NullFC;
    subRefCP(old);
}
/// Stores `value` in `container` with one reference on it, and takes the one off the old value.
template <class PtrT>
inline void setRefdCP(PtrT &container, const PtrT &value)
{
    if(container != value)
    {
        PtrT old = container;
        addRefCP(value);
        container = value;
        subRefCP(old);
    }
}

OSG_END_NAMESPACE

#endif
