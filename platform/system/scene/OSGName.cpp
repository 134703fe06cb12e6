#include "OSGName.h"

#include "OSGLog.h"

OSG_BEGIN_NAMESPACE

void Name::initMethod() {}

Name::Name() = default;

Name::Name(const Name &source) : Inherited(source) {}

Name::~Name() = default;

void Name::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Name::dump(UInt32, const BitVector) const
{
    SLOG << "Name: " << _sfFieldValue.getValue() << std::endl;
}

void setName(const AttachmentContainerPtr &container, const std::string &name)
{
    if(container == NullFC)
        return;
    const AttachmentPtr old = container->findAttachment(Name::getClassType().getGroupId());
    if(old == NullFC && name.empty())
        return;
    // A copied container shares the name of what it is a copy of, so a new name is a new attachment.
    if(name.empty())
    {
        container->subAttachment(old);
    }
    else
    {
        NamePtr attachment = Name::create();
        attachment->setFieldValue(name);
        container->addAttachment(attachment);
    }
    endEditCP(container, AttachmentContainer::AttachmentsFieldMask);
}

const Char8 *getName(const AttachmentContainerPtr &container)
{
    if(container == NullFC)
        return nullptr;
    const NamePtr name = NamePtr::dcast(container->findAttachment(Name::getClassType().getGroupId()));
    return name == NullFC ? nullptr : name->getFieldValue().c_str();
}

OSG_END_NAMESPACE
