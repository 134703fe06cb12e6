#ifndef _OSGFIELDCONTAINERFIELDS_H_
#define _OSGFIELDCONTAINERFIELDS_H_

/// \file
/// What the fields of container pointers have in common, and the fields of pointers to any container.

#include "OSGFieldContainerPtr.h"
#include "OSGMField.h"
#include "OSGSField.h"

OSG_BEGIN_NAMESPACE

/// The container of that id, or NullFC.
OSG_BASELIB_DLLMAPPING FieldContainerPtr findContainer(UInt32 containerId);
/// Writes the id of the container, 0 for NullFC.
OSG_BASELIB_DLLMAPPING void putContainerId(BinaryDataHandler &memory, const FieldContainerPtr &container);
/// Reads an id.
OSG_BASELIB_DLLMAPPING UInt32 getContainerId(BinaryDataHandler &memory);

/// The conversions of a pointer: no text form; in binary, 4 bytes with the container id, 0 for NullFC. An id read that
/// is of no living container, or of one of another class, gives NullFC.
/// `FieldDataTraits<PtrT>::dcast` is PtrT::dcast, out of line, since the class is not known where its fields are.
template <class PtrT>
struct FieldPtrTraits : public ErrorFromToString<PtrT>
{
    /// NullFC.
    static PtrT getDefault() { return PtrT(); }

    /// The binary form of pointers is the id of the container: its size, writing and reading it.
    static UInt32 getBinSize(const PtrT &) { return UInt32(sizeof(UInt32)); }
    static UInt32 getBinSize(const PtrT *, UInt32 count) { return UInt32(sizeof(UInt32)) * count; }

    /// The binary form of pointers is the id of the container: its size, writing and reading it.
    static void copyToBin(BinaryDataHandler &memory, const PtrT &value) { putContainerId(memory, value); }
    static void copyToBin(BinaryDataHandler &memory, const PtrT *values, UInt32 count)
    {
        for(UInt32 i = 0; i < count; ++i)
            putContainerId(memory, values[i]);
    }

    /// The binary form of pointers is the id of the container: its size, writing and reading it.
    static void copyFromBin(BinaryDataHandler &memory, PtrT &value)
    {
        value = FieldDataTraits<PtrT>::dcast(findContainer(getContainerId(memory)));
    }
    static void copyFromBin(BinaryDataHandler &memory, PtrT *values, UInt32 count)
    {
        for(UInt32 i = 0; i < count; ++i)
            copyFromBin(memory, values[i]);
    }
};

/// What the fields of a FieldContainerPtr know of it.
template <>
struct OSG_BASELIB_DLLMAPPING FieldDataTraits<FieldContainerPtr> : public FieldPtrTraits<FieldContainerPtr>
{
    /// The type's entry in the table of all types.
    static DataType _type;
    static DataType &getType() { return _type; }
    /// Name of the type of a field.
    static const Char8 *getSName() { return "SFFieldContainerPtr"; }
    static const Char8 *getMName() { return "MFFieldContainerPtr"; }
    /// The same pointer.
    static FieldContainerPtr dcast(const FieldContainerPtr &source) { return source; }
};

extern template class SField<FieldContainerPtr>;
extern template class MField<FieldContainerPtr>;
/// Field of one pointer and of many pointers to containers of any class.
typedef SField<FieldContainerPtr> SFFieldContainerPtr;
typedef MField<FieldContainerPtr> MFFieldContainerPtr;

OSG_END_NAMESPACE

#endif
