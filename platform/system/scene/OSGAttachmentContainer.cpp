#include "OSGAttachmentContainer.h"

#include "OSGAttachment.h"
#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

namespace
{

UInt32 keyOf(UInt32 groupId, UInt16 binding)
{
    return (groupId << 16) | binding;
}

} // namespace

void AttachmentContainer::initMethod() {}

AttachmentContainer::AttachmentContainer() = default;

AttachmentContainer::AttachmentContainer(const AttachmentContainer &source) : Inherited(source) {}

AttachmentContainer::~AttachmentContainer() = default;

void AttachmentContainer::onCreate(const AttachmentContainer *)
{
    for(const auto &entry : _sfAttachments.getValue())
    {
        addRefCP(entry.second);
        entry.second->addParent(getPtr(), AttachmentsFieldId);
        endEditNotChangedCP(entry.second, Attachment::ParentsFieldMask);
    }
}

void AttachmentContainer::onDestroy()
{
    AttachmentMap attached;
    attached.swap(_sfAttachments.getValue());
    for(const auto &entry : attached)
    {
        entry.second->subParent(getPtr());
        endEditNotChangedCP(entry.second, Attachment::ParentsFieldMask);
        subRefCP(entry.second);
    }
    Inherited::onDestroy();
}

void AttachmentContainer::addAttachment(const AttachmentPtr &attachment, UInt16 binding)
{
    if(attachment == NullFC)
        return;
    AttachmentPtr &slot = _sfAttachments.getValue()[keyOf(attachment->getGroupId(), binding)];
    if(slot == attachment)
        return;
    const AttachmentPtr old = slot;
    addRefCP(attachment);
    attachment->addParent(getPtr(), AttachmentsFieldId);
    endEditNotChangedCP(attachment, Attachment::ParentsFieldMask);
    slot = attachment;
    if(old != NullFC)
    {
        old->subParent(getPtr());
        endEditNotChangedCP(old, Attachment::ParentsFieldMask);
        subRefCP(old);
    }
}

void AttachmentContainer::subAttachment(const AttachmentPtr &attachment, UInt16 binding)
{
    if(attachment == NullFC)
        return;
    const auto found = _sfAttachments.getValue().find(keyOf(attachment->getGroupId(), binding));
    if(found == _sfAttachments.getValue().end() || found->second != attachment)
        return;
    _sfAttachments.getValue().erase(found);
    attachment->subParent(getPtr());
    endEditNotChangedCP(attachment, Attachment::ParentsFieldMask);
    subRefCP(attachment);
}

AttachmentPtr AttachmentContainer::findAttachment(UInt32 groupId, UInt16 binding) const
{
    const auto found = _sfAttachments.getValue().find(keyOf(groupId, binding));
    return found == _sfAttachments.getValue().end() ? AttachmentPtr() : found->second;
}

void AttachmentContainer::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void AttachmentContainer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump AttachmentContainer NI" << std::endl;
}

OSG_END_NAMESPACE
