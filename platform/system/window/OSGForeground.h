#ifndef _OSGFOREGROUND_H_
#define _OSGFOREGROUND_H_

/// \file
/// What is drawn over a viewport's scene, or done with its finished picture.

#include "OSGForegroundBase.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;
class Viewport;

class OSG_SYSTEMLIB_DLLMAPPING Foreground : public ForegroundBase
{
  public:
    typedef ForegroundBase Inherited;

    /// Draws over the scene, with the context current and the viewport's GL state set. Matrices and state are
    /// left as they were.
    virtual void draw(DrawActionBase *action, Viewport *port) = 0;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Foreground();
    Foreground(const Foreground &source);
    ~Foreground() override;

  private:
    friend class FieldContainer;
    friend class ForegroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
