#ifndef _OSGNURBSTRIMMINGLOOP_H_
#define _OSGNURBSTRIMMINGLOOP_H_

/// \file
/// One contour that trims a NURBS surface.

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGHeldReferences.h>
#include <Tessaly/OSGNurbsTrimmingLoopBase.h>

class GLUnurbs;

OSG_BEGIN_NAMESPACE

class DrawActionBase;

/// The curves of one closed contour in the parameter plane of a NurbsSurface, of whose field trimmingLoop this is an entry.
/// Actions do nothing with it. Closure and orientation of the contour are up to whoever makes the curves: what is on its left
/// stays. GLU reports violations through the surface.
///
/// A change here or in a curve does not reach the surface: edit its field trimmingLoop to have it tessellated anew.
class OSG_TESSALY_DLLMAPPING NurbsTrimmingLoop : public NurbsTrimmingLoopBase
{
  public:
    typedef NurbsTrimmingLoopBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

    /// Sends the curves to `nurb`, the surface's renderer, between the caller's gluBeginTrim and gluEndTrim. `action` may be
    /// null. Always Continue.
    virtual Action::ResultE trim(DrawActionBase *action, GLUnurbs *nurb);

  protected:
    NurbsTrimmingLoop();
    NurbsTrimmingLoop(const NurbsTrimmingLoop &source);
    ~NurbsTrimmingLoop() override;

    void onCreate(const NurbsTrimmingLoop *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class NurbsTrimmingLoopBase;

    static void initMethod();

    HeldReferences<NodeCorePtr> _heldContour;
};

OSG_END_NAMESPACE

#endif
