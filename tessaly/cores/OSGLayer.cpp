#include <Tessaly/OSGLayer.h>

#include <OpenSG/OSGDrawAction.h>
#include <OpenSG/OSGIntersectAction.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRenderAction.h>

OSG_BEGIN_NAMESPACE

namespace
{

/// The nodes that the action is about to visit, which its own list no longer tells once one is being made.
std::vector<NodePtr> nodesAhead(const Action *action)
{
    std::vector<NodePtr> nodes;
    const UInt32 count = action->getNNodes();
    nodes.reserve(count);
    for(UInt32 i = 0; i < count; ++i)
        nodes.push_back(action->getNode(i));
    return nodes;
}

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
    const std::vector<NodePtr> nodes = nodesAhead(action);
    const MFInt8 &visible = getVisible();
    // Without children the empty list counts as one that is long enough, and the answer is Continue; that is
    // meant.
    if(visible.size() == 0 && !nodes.empty())
        return drawAction->selectVisibles() != 0 ? Action::Continue : Action::Skip;

    action->useNodeList();
    for(UInt32 i = 0; i < nodes.size(); ++i)
    {
        if(isOn(visible, i) && drawAction->isVisible(nodes[i].getCPtr()))
            action->addNode(nodes[i]);
    }
    // Also with nothing selected, which is meant: the leave functors see the same answer whatever is in
    // sight.
    return Action::Continue;
}

Action::ResultE Layer::intersectEnter(Action *action)
{
    const MFInt8 &pickable = getPickable();
    const std::vector<NodePtr> nodes = nodesAhead(action);
    if(pickable.size() == 0 && !nodes.empty())
        return Action::Continue;

    action->useNodeList();
    for(UInt32 i = 0; i < nodes.size(); ++i)
    {
        if(isOn(pickable, i))
            action->addNode(nodes[i]);
    }
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
