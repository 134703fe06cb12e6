#ifndef _OSGSCREENDUMPFOREGROUND_H_
#define _OSGSCREENDUMPFOREGROUND_H_

/// \file
/// Writes frames to image files.

#include <Tessaly/OSGScreenDumpForegroundBase.h>

OSG_BEGIN_NAMESPACE

/// A queue of screenshots: each frame that is drawn while there are file names goes to the first of them,
/// which is then taken off the list. The format is PNG whatever the name's suffix. A name that can't be
/// opened is taken off without a message and not tried again, as is meant.
///
/// The frame is grabbed into `image`; where that is null, an RGB image is made. Writing blocks the frame.
/// Belongs to the thread that draws the viewport, with the window's context current; names are taken off that
/// thread's aspect.
class OSG_TESSALY_DLLMAPPING ScreenDumpForeground : public ScreenDumpForegroundBase
{
  public:
    typedef ScreenDumpForegroundBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    ScreenDumpForeground();
    ScreenDumpForeground(const ScreenDumpForeground &source);
    ~ScreenDumpForeground() override;

    /// Costs one test while there are no names.
    void draw(DrawActionBase *action, Viewport *port) override;

  private:
    friend class FieldContainer;
    friend class ScreenDumpForegroundBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
