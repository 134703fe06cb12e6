#ifndef _OSGFIELDCONTAINER_H_
#define _OSGFIELDCONTAINER_H_

/// \file
/// The root of all container classes, and the brackets around edits.

#include <cstdlib>
#include <new>

#include "OSGChangeList.h"
#include "OSGFieldContainerFactory.h"
#include "OSGFieldContainerFields.h"
#include "OSGFieldContainerType.h"

OSG_BEGIN_NAMESPACE

class BinaryDataHandler;

namespace FieldBits
{
constexpr BitVector NoField = 0; ///< nothing changed
constexpr BitVector AllFields = ~BitVector(0); ///< anything may have changed
} // namespace FieldBits

/// Where a change comes from; the last argument of `changed`. Bits, which may be combined.
namespace ChangedOrigin
{
constexpr UInt32 Sync = 0x1;      ///< another aspect, through a change list
constexpr UInt32 External = 0x2;  ///< an edit of the application
constexpr UInt32 Child = 0x4;     ///< a change in a child
constexpr UInt32 Abstract = 0x8;  ///< a field written without its setter: links are to be repaired
constexpr UInt32 AbstrCheckValid = 0x400;    ///< with Abstract: only where the link is missing
constexpr UInt32 AbstrIncRefCount = 0x800;   ///< with Abstract: only the reference is missing
} // namespace ChangedOrigin

/// The root of all container classes. Containers are made by `create` of their class or by name through the factory,
/// never on the stack. One copy per aspect; all of a container's operations work on the copy of the calling thread.
class OSG_BASELIB_DLLMAPPING FieldContainer
{
  public:
    typedef FieldContainerPtr Ptr;

    enum
    {
        NextFieldId = 1
    };
    /// The bit behind the last field.
    static constexpr BitVector NextFieldMask = BitVector(1) << NextFieldId;
    /// Always 0: every field is copied between aspects.
    static constexpr BitVector MTInfluenceMask = 0;

    /// The type, its id and the id of its group, of the class instead of an object.
    static FieldContainerType &getClassType() { return _type; }
    static UInt32 getClassTypeId() { return _type.getId(); }
    static UInt16 getClassGroupId() { return _type.getGroupId(); }

    /// The type of the object.
    virtual FieldContainerType &getType() = 0;
    virtual const FieldContainerType &getType() const = 0;
    /// Bytes of the object.
    virtual UInt32 getContainerSize() const = 0;
    /// A new container with the same field values. Members that are no fields are set as the class's copy constructor
    /// does. NullFC for abstract classes.
    virtual FieldContainerPtr shallowCopy() const = 0;

    /// The binary form of the selected fields: its size, writing and reading it.
    virtual UInt32 getBinSize(const BitVector &whichField);
    virtual void copyToBin(BinaryDataHandler &memory, const BitVector &whichField);
    virtual void copyFromBin(BinaryDataHandler &memory, const BitVector &whichField);

    /// Called behind every edit, on the thread that edits, and behind every synchronisation, on the thread that
    /// synchronises. `origin` is of ChangedOrigin.
    virtual void changed(BitVector whichField, UInt32 origin);
    /// Writes the container to the log, indented by that many columns.
    virtual void dump(UInt32 indent = 0, const BitVector flags = 0) const;

    virtual ~FieldContainer();

    /// Takes the selected fields from `other`, another aspect's copy of this container.
    virtual void executeSync(FieldContainer &other, const BitVector &whichField);

    /// The type's id, the id of its group, and its name.
    UInt32 getTypeId() const { return getType().getId(); }
    UInt16 getGroupId() const { return getType().getGroupId(); }
    const Char8 *getTypeName() const { return getType().getCName(); }

    /// Fields, the parents' too.
    UInt32 getNumFields() const { return getType().getNumFieldDescs(); }
    /// The field of that id or name, or null.
    Field *getField(UInt32 fieldId);
    Field *getField(const Char8 *name);

    /// The pointer to the container, and its id with the factory.
    FieldContainerPtr getPtr() const;
    UInt32 getFieldContainerId() const { return getPtr().getFieldContainerId(); }

  protected:
    friend class FieldContainerPtr;
    friend class FieldContainerFactory;
    template <class BasePtr, class X>
    friend class FCPtr;

    FieldContainer() = default;
    /// Members that are no fields.
    FieldContainer(const FieldContainer &) {}
    FieldContainer &operator=(const FieldContainer &) = delete;

    /// Copies the fields of this class; here none.
    void executeSyncImpl(FieldContainer *, const BitVector &) {}

    /// Runs once, on the maker's aspect, when a container has been made; `source` is what it is a copy of, or null.
    /// A class has its hook by declaring an operation of this name.
    void onCreate(const FieldContainer *source = nullptr);
    /// Runs once, on the aspect of the thread that took the last reference away. Containers let go here of what they
    /// hold references of.
    virtual void onDestroy();

    /// Allocates a container: one block of the head and a copy of X per aspect, each made from `source` or by default.
    template <class PtrT>
    static void newPtr(PtrT &result, const typename PtrT::StoredObjectType *source);

  private:
    static FieldContainerType _type;

    static void *allocate(std::size_t objectSize);
    /// Fills the head and enters the container in the factory and the change list.
    static void enter(FieldContainerPtr container);
};

template <class PtrT>
inline void FieldContainer::newPtr(PtrT &result, const typename PtrT::StoredObjectType *source)
{
    typedef typename PtrT::StoredObjectType X;
    static_assert(alignof(X) <= FieldContainerPtr::HeadSize, "the head of 8 bytes must keep the copies aligned");

    FieldContainerPtr &container = result;
    container._containerSize = sizeof(X);
    container._storeP = static_cast<UInt8 *>(allocate(sizeof(X))) + FieldContainerPtr::HeadSize;
    enter(container);
    for(UInt32 aspect = 0; aspect < ThreadManager::getNumAspects(); ++aspect)
    {
        void *const place = container._storeP + aspect * sizeof(X);
        if(source == nullptr)
            new(place) X();
        else
            new(place) X(*source);
    }
    result->onCreate(source);
}

/// Opens an edit of the selected fields.
inline void beginEditCP(const FieldContainerPtr &, BitVector = FieldBits::AllFields,
                        UInt32 = ChangedOrigin::External)
{
}

/// Closes an edit: the change goes into the calling thread's change list, and `changed` is called.
OSG_BASELIB_DLLMAPPING void endEditCP(const FieldContainerPtr &container,
                                      BitVector whichField = FieldBits::AllFields,
                                      UInt32 origin = ChangedOrigin::External);

/// Closes an edit whose `changed` somebody else sees to.
OSG_BASELIB_DLLMAPPING void endEditNotChangedCP(const FieldContainerPtr &container, BitVector whichField);

/// As endEditCP; for changes that were not bracketed.
inline void changedCP(const FieldContainerPtr &container, BitVector whichField, UInt32 origin)
{
    endEditCP(container, whichField, origin);
}

/// An edit from here to the end of the block.
class CPEditor
{
  public:
    /// Opens and, at its end, closes the edit.
    explicit CPEditor(const FieldContainerPtr &container, BitVector whichField = FieldBits::AllFields)
        : _container(container), _whichField(whichField)
    {
        beginEditCP(_container, _whichField);
    }
    ~CPEditor() { endEditCP(_container, _whichField); }
    CPEditor(const CPEditor &) = delete;
    CPEditor &operator=(const CPEditor &) = delete;

  private:
    FieldContainerPtr _container;
    BitVector _whichField;
};

/// An edit of a container, which has to be a plain variable, to the end of the block.
#define CPEdit(container, mask) osg::CPEditor container##Editor(container, mask)

OSG_END_NAMESPACE

#endif
