#ifndef _OSGPASSIVEWINDOW_H_
#define _OSGPASSIVEWINDOW_H_

/// \file
/// A window over somebody else's GL context.

#include "OSGPassiveWindowBase.h"

OSG_BEGIN_NAMESPACE

/// The host makes the context, makes it current ahead of every call that draws, and shows the frame itself.
class OSG_SYSTEMLIB_DLLMAPPING PassiveWindow : public PassiveWindowBase
{
  public:
    typedef PassiveWindowBase Inherited;

    void init() override;
    bool activate() override;
    bool deactivate() override;
    bool isActive() override;
    bool swap() override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PassiveWindow();
    PassiveWindow(const PassiveWindow &source);
    ~PassiveWindow() override;

    GLExtensionFunction getFunctionByName(const Char8 *name) override;

  private:
    friend class FieldContainer;
    friend class PassiveWindowBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
