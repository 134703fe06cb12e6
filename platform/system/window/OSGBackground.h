#ifndef _OSGBACKGROUND_H_
#define _OSGBACKGROUND_H_

/// \file
/// What clears a viewport.

#include "OSGBackgroundBase.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Viewport;

class OSG_SYSTEMLIB_DLLMAPPING Background : public BackgroundBase
{
  public:
    typedef BackgroundBase Inherited;

    /// Clears the viewport ahead of the scene, with the viewport's GL state set and the context current.
    /// Matrices and state are left as they were.
    virtual void clear(DrawActionBase *action, Viewport *port) = 0;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Background();
    Background(const Background &source);
    ~Background() override;

  private:
    friend class FieldContainer;
    friend class BackgroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
