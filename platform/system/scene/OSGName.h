#ifndef _OSGNAME_H_
#define _OSGNAME_H_

/// \file
/// Names of containers.

#include "OSGAttachmentContainer.h"
#include "OSGAttachment.h"
#include "OSGNameBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING Name : public NameBase
{
  public:
    typedef NameBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Name();
    Name(const Name &source);
    ~Name() override;

  private:
    friend class FieldContainer;
    friend class NameBase;

    static void initMethod();
};

/// Names `container`; an empty name takes the name away.
OSG_SYSTEMLIB_DLLMAPPING void setName(const AttachmentContainerPtr &container, const std::string &name);
/// The name of `container`, or null. Valid until the name changes.
OSG_SYSTEMLIB_DLLMAPPING const Char8 *getName(const AttachmentContainerPtr &container);

OSG_END_NAMESPACE

#endif
