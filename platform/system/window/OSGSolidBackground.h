#ifndef _OSGSOLIDBACKGROUND_H_
#define _OSGSOLIDBACKGROUND_H_

/// \file
/// Clears colour, depth and, where asked, stencil.

#include "OSGSolidBackgroundBase.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING SolidBackground : public SolidBackgroundBase
{
  public:
    typedef SolidBackgroundBase Inherited;

    void clear(DrawActionBase *action, Viewport *port) override;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    SolidBackground();
    SolidBackground(const SolidBackground &source);
    ~SolidBackground() override;

  private:
    friend class FieldContainer;
    friend class SolidBackgroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
