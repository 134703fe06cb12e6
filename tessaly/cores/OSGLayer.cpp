#include <Tessaly/OSGLayer.h>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// Beyond the end of the list everything is switched on.
bool isOn(const MFInt8 &switches, UInt32 index)
{
    return index >= switches.size() || switches[index] != 0;
}

} // namespace

void Layer::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&Layer::draw));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&Layer::draw));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Layer::intersectEnter));
    IntersectAction::registerLeaveDefault(getClassType(), makeFunctor(&Layer::intersectLeave));
}

Layer::Layer() = default;

Layer::Layer(const Layer &source) : Inherited(source) {}

Layer::~Layer() = default;

void Layer::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Layer::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Layer NI" << std::endl;
}

Action::ResultE Layer::draw(Action *action)
{
    DrawActionBase *const drawAction = dynamic_cast<DrawActionBase *>(action);
    if(drawAction == nullptr)
        return Action::Continue;
    const MFInt8 &visible = getVisible();
    // Without children the empty list counts as one that is long enough, and the answer is Continue; that is
    // meant.
    if(visible.size() == 0 && action->getNNodes() != 0)
        return drawAction->selectVisibles() != 0 ? Action::Continue : Action::Skip;

    UInt32 child = 0;
    action->keepNodes([&](const NodePtr &node) {
        return isOn(visible, child++) && drawAction->isVisible(node.getCPtr());
    });
    // Also with nothing selected, which is meant: the leave functors see the same answer whatever is in
    // sight.
    return Action::Continue;
}

Action::ResultE Layer::intersectEnter(Action *action)
{
    const MFInt8 &pickable = getPickable();
    if(pickable.size() == 0)
        return Action::Continue;

    UInt32 child = 0;
    action->keepNodes([&](const NodePtr &) { return isOn(pickable, child++); });
    return Action::Continue;
}

Action::ResultE Layer::intersectLeave(Action *action)
{
    const IntersectAction *const pick = dynamic_cast<IntersectAction *>(action);
    if(pick == nullptr)
        return Action::Continue;
    setHit(pick->didHit() ? pick->getHitT() : -1.0f);
    endEditCP(LayerPtr(*this), HitFieldMask);
    return Action::Continue;
}

OSG_END_NAMESPACE
