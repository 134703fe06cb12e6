#ifndef _OSGPASSIVEBACKGROUND_H_
#define _OSGPASSIVEBACKGROUND_H_

/// \file
/// Clears nothing.

#include "OSGPassiveBackgroundBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING PassiveBackground : public PassiveBackgroundBase
{
  public:
    typedef PassiveBackgroundBase Inherited;

    void clear(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PassiveBackground();
    PassiveBackground(const PassiveBackground &source);
    ~PassiveBackground() override;

  private:
    friend class FieldContainer;
    friend class PassiveBackgroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
