#ifndef _OSGATTACHMENT_H_
#define _OSGATTACHMENT_H_

/// \file
/// What can be attached to a container.

#include "OSGAttachmentBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING Attachment : public AttachmentBase
{
  public:
    typedef AttachmentBase Inherited;

    /// Notes that `parent` holds this in its field of that id.
    void addParent(const FieldContainerPtr &parent, UInt16 storedInFieldId = FieldContainerPtr::InvalidParentEPos);
    /// Removes the first entry of `parent`; nothing if there is none.
    void subParent(const FieldContainerPtr &parent);
    /// The index of the first entry of `parent`, or -1.
    Int32 findParent(const FieldContainerPtr &parent) const;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Attachment();
    Attachment(const Attachment &source);
    ~Attachment() override;

  private:
    friend class FieldContainer;
    friend class AttachmentBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
