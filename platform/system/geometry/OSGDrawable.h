#ifndef _OSGDRAWABLE_H_
#define _OSGDRAWABLE_H_

/// \file
/// The core that can be drawn.

#include "OSGAction.h"
#include "OSGDrawableBase.h"
#include "OSGStatCollector.h"

OSG_BEGIN_NAMESPACE

class DrawActionBase;

class OSG_SYSTEMLIB_DLLMAPPING Drawable : public DrawableBase
{
  public:
    typedef DrawableBase Inherited;

    /// What a frame drew, for the statistics.
    static StatElemDesc<StatIntElem> statNTriangles;
    static StatElemDesc<StatIntElem> statNLines;
    static StatElemDesc<StatIntElem> statNPoints;
    static StatElemDesc<StatIntElem> statNVertices;
    static StatElemDesc<StatIntElem> statNPrimitives;
    static StatElemDesc<StatIntElem> statNGeoBytes;

    /// Draws with the state that is active. A GL context is current.
    virtual Action::ResultE drawPrimitives(DrawActionBase *action) = 0;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Drawable();
    Drawable(const Drawable &source);
    ~Drawable() override;

  private:
    friend class FieldContainer;
    friend class DrawableBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
