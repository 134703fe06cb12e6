#include "OSGAttachmentMapFields.h"

#include "OSGAttachment.h"

OSG_BEGIN_NAMESPACE

DataType FieldDataTraits<AttachmentMap>::_type("AttachmentMap", "", 0);
template class SField<AttachmentMap>;

UInt32 FieldDataTraits<AttachmentMap>::getBinSize(const AttachmentMap &value)
{
    return UInt32(sizeof(UInt32) * (1 + 2 * value.size()));
}

void FieldDataTraits<AttachmentMap>::copyToBin(BinaryDataHandler &memory, const AttachmentMap &value)
{
    const UInt32 count = UInt32(value.size());
    memory.putValue(count);
    for(const auto &entry : value)
    {
        memory.putValue(entry.first);
        putContainerId(memory, entry.second);
    }
}

void FieldDataTraits<AttachmentMap>::copyFromBin(BinaryDataHandler &memory, AttachmentMap &value)
{
    UInt32 count = 0;
    memory.getValue(count);
    value.clear();
    for(UInt32 i = 0; i < count && memory.canRead(2 * sizeof(UInt32)); ++i)
    {
        UInt32 key = 0;
        memory.getValue(key);
        const AttachmentPtr attachment = AttachmentPtr::dcast(findContainer(getContainerId(memory)));
        if(attachment != NullFC)
            value[key] = attachment;
    }
}

OSG_END_NAMESPACE
