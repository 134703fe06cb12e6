#ifndef _OSGATTACHMENTCONTAINER_H_
#define _OSGATTACHMENTCONTAINER_H_

/// \file
/// A container that others can be attached to.

#include "OSGAttachmentContainerBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING AttachmentContainer : public AttachmentContainerBase
{
  public:
    typedef AttachmentContainerBase Inherited;

    /// Attaches `attachment`, which replaces one of the same kind and binding. A reference is held.
    void addAttachment(const AttachmentPtr &attachment, UInt16 binding = 0);
    /// Takes one away; the reference is given back.
    void subAttachment(const AttachmentPtr &attachment, UInt16 binding = 0);
    /// What is attached of that kind, given by the group id of its class, or NullFC.
    AttachmentPtr findAttachment(UInt32 groupId, UInt16 binding = 0) const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    AttachmentContainer();
    /// A copy shares what is attached.
    AttachmentContainer(const AttachmentContainer &source);
    ~AttachmentContainer() override;

    void onCreate(const AttachmentContainer *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class AttachmentContainerBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
