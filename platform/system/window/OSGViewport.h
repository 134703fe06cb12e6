#ifndef _OSGVIEWPORT_H_
#define _OSGVIEWPORT_H_

/// \file
/// A rectangle of a window in which a scene is shown.

#include "OSGBackgroundFields.h"
#include "OSGCameraFields.h"
#include "OSGForegroundFields.h"
#include "OSGHeldReferences.h"
#include "OSGNodeFields.h"
#include "OSGViewportBase.h"
#include "OSGWindowFields.h"

OSG_BEGIN_NAMESPACE

class DrawAction;
class DrawActionBase;
class RenderActionBase;

/// Shows `root` through `camera` over `background`, and `foregrounds` over that. Cameras, roots and
/// backgrounds may be shared by viewports. Drawing belongs to the thread that draws the window, with its
/// context current.
class OSG_SYSTEMLIB_DLLMAPPING Viewport : public ViewportBase
{
  public:
    typedef ViewportBase Inherited;

    using Inherited::getParent;

    // The setters take a reference and give the old one back.
    /// Takes a reference, and gives back that on the old one. Null is allowed.
    void setCamera(const CameraPtr &camera);
    void setRoot(const NodePtr &root);
    void setBackground(const BackgroundPtr &background);

    /// The four edges in the order left, bottom, right, top. A value above 1 is a pixel of the window,
    /// inclusive; one of 1 or less a share of the window's size.
    void setSize(Real32 left, Real32 bottom, Real32 right, Real32 top);

    // The edges in pixels of the window, both inclusive, from its lower left corner on. A share without a
    // window to take it of gives 0 for left and bottom, -1 for right and top.
    /// The edges and the size in pixels of the window, both edges inside.
    Int32 getPixelLeft() const;
    Int32 getPixelRight() const;
    Int32 getPixelBottom() const;
    Int32 getPixelTop() const;
    Int32 getPixelWidth() const { return getPixelRight() - getPixelLeft() + 1; }
    Int32 getPixelHeight() const { return getPixelTop() - getPixelBottom() + 1; }
    /// Whether it covers the whole window.
    bool isFullWindow() const;

    /// Sets GL's viewport and, unless it is the whole window, restricts drawing to it.
    virtual void activate();
    /// The same, for those who changed GL's viewport in between.
    virtual void activateSize();
    /// Takes the restriction back.
    virtual void deactivate();

    /// Draws a frame. The window of the action must be set, its context current. Without camera, root or
    /// background nothing is drawn, and one warning is logged until the fields change.
    virtual void render(RenderActionBase *action);
    /// The same with the action that does not sort.
    virtual void draw(DrawAction *action);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Viewport();
    Viewport(const Viewport &source);
    ~Viewport() override;

    void onCreate(const Viewport *source = nullptr);
    void onDestroy() override;

    /// Whether there is all that drawing needs; logs what is missing, once.
    bool isComplete();
    /// Hands window, viewport, camera, background and mask to the action.
    void prepare(DrawActionBase *action);
    /// Draws the foregrounds in their order.
    void drawForegrounds(DrawActionBase *action);

  private:
    friend class FieldContainer;
    friend class ViewportBase;

    static void initMethod();

    bool _warned = false;
    HeldReferences<ForegroundPtr> _heldForegrounds;
};

OSG_END_NAMESPACE

#endif
