#ifndef _OSGSWITCH_H_
#define _OSGSWITCH_H_

/// \file
/// The core that shows one of its children, all or none.

#include "OSGAction.h"
#include "OSGSwitchBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING Switch : public SwitchBase
{
  public:
    typedef SwitchBase Inherited;

    enum
    {
        NONE = -1,
        ALL = -2
    };

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// The same for every action: names the children that are visited.
    Action::ResultE select(Action *action);

  protected:
    Switch();
    Switch(const Switch &source);
    ~Switch() override;

  private:
    friend class FieldContainer;
    friend class SwitchBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
