#ifndef _OSGGROUP_H_
#define _OSGGROUP_H_

/// \file
/// The core of a node that only holds its children together.

#include "OSGAction.h"
#include "OSGGroupBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING Group : public GroupBase
{
  public:
    typedef GroupBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// For actions that draw: visits the children in the camera's frustum; Skip where there is none.
    Action::ResultE draw(Action *action);
    /// For IntersectAction: visits the children whose volumes the line hits.
    Action::ResultE intersect(Action *action);

  protected:
    Group();
    Group(const Group &source);
    ~Group() override;

  private:
    friend class FieldContainer;
    friend class GroupBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
