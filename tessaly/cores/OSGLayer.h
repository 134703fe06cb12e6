#ifndef _OSGLAYER_H_
#define _OSGLAYER_H_

/// \file
/// A group with picking and visibility switches for its children.

#include <OpenSG/OSGAction.h>
#include <Tessaly/OSGLayerBase.h>

OSG_BEGIN_NAMESPACE

/// Entry i of `visible` and `pickable` speaks for child i of the node. A list that ends early leaves the
/// children beyond it switched on, an empty one makes this a plain group, and entries beyond the last child
/// are not looked at.
///
/// After each pick that came by, `hit` holds the action's hit distance at that moment, in units of the ray's
/// direction, or -1 without a hit. The hit may lie outside of this layer.
///
/// No GL context is needed but for drawing. Pick on the application's thread: picking writes a field.
class OSG_TESSALY_DLLMAPPING Layer : public LayerBase
{
  public:
    typedef LayerBase Inherited;

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    Layer();
    Layer(const Layer &source);
    ~Layer() override;

    /// For DrawActionBase: visits the children that are switched on and in the camera's frustum. Skip only
    /// with an empty list and no child in sight.
    Action::ResultE draw(Action *action);
    /// For IntersectAction: visits the children that are switched on, wherever the ray goes. Always Continue.
    Action::ResultE intersectEnter(Action *action);
    /// Writes `hit`. Always Continue.
    Action::ResultE intersectLeave(Action *action);

  private:
    friend class FieldContainer;
    friend class LayerBase;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
