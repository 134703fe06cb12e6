#ifndef _OSGDISPLAYFILTER_H_
#define _OSGDISPLAYFILTER_H_

/// \file
/// A stage of the processing of a finished picture.

#include "OSGDisplayFilterBase.h"

OSG_BEGIN_NAMESPACE

class DisplayFilterForeground;
class Viewport;

/// Changes the finished picture of a viewport, from within the DisplayFilterForeground that holds it. Belongs
/// to the thread that draws the viewport.
class OSG_SYSTEMLIB_DLLMAPPING DisplayFilter : public DisplayFilterBase
{
  public:
    typedef DisplayFilterBase Inherited;

    /// Sets the filter up: asks the foreground for a read-back group and adds chunks to its material. Called
    /// in the first frame of the filter, and again when the foreground's filters change; what was set up
    /// before is gone by then. The window's context is current.
    virtual void createFilter(DisplayFilterForeground *foreground, Viewport *port) = 0;
    /// Called in each frame ahead of the drawing; does nothing here.
    virtual void updateFilter(DisplayFilterForeground *foreground, Viewport *port);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    DisplayFilter();
    DisplayFilter(const DisplayFilter &source);
    ~DisplayFilter() override;

  private:
    friend class FieldContainer;
    friend class DisplayFilterBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
