#ifndef _OSGATTACHMENTMAPFIELDS_H_
#define _OSGATTACHMENTMAPFIELDS_H_

/// \file
/// The field that holds what is attached to a container.

#include <map>

#include "OSGAttachmentFields.h"

OSG_BEGIN_NAMESPACE

/// What is attached, by group id of its class shifted left by 16, plus binding.
typedef std::map<UInt32, AttachmentPtr> AttachmentMap;

/// No text form; in binary a count, and for each its key and its container id.
template <>
struct OSG_SYSTEMLIB_DLLMAPPING FieldDataTraits<AttachmentMap> : public ErrorFromToString<AttachmentMap>
{
    /// The type's entry in the table of all types.
    static DataType _type;
    static DataType &getType() { return _type; }
    /// Name of the type of a field.
    static const Char8 *getSName() { return "SFAttachmentMap"; }
    static const Char8 *getMName() { return "MFAttachmentMap"; }
    /// No attachments.
    static AttachmentMap getDefault() { return AttachmentMap(); }

    /// The binary form: its size, writing and reading it.
    static UInt32 getBinSize(const AttachmentMap &value);
    static void copyToBin(BinaryDataHandler &memory, const AttachmentMap &value);
    static void copyFromBin(BinaryDataHandler &memory, AttachmentMap &value);
};

extern template class SField<AttachmentMap>;
/// Field of attachments.
typedef SField<AttachmentMap> SFAttachmentMap;

OSG_END_NAMESPACE

#endif
