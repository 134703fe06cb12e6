#include "OSGSwitch.h"

#include "OSGDrawAction.h"
#include "OSGIntersectAction.h"
#include "OSGLog.h"
#include "OSGNode.h"
#include "OSGRenderAction.h"

OSG_BEGIN_NAMESPACE

void Switch::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&Switch::select));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&Switch::select));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Switch::select));
}

Switch::Switch() = default;

Switch::Switch(const Switch &source) : Inherited(source) {}

Switch::~Switch() = default;

void Switch::changed(BitVector whichField, UInt32 origin)
{
    if((whichField & ChoiceFieldMask) != 0)
        invalidateVolume();
    Inherited::changed(whichField, origin);
}

void Switch::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Switch NI" << std::endl;
}

Action::ResultE Switch::select(Action *action)
{
    if(getChoice() == ALL)
        return Action::Continue;
    if(getChoice() < 0 || UInt32(getChoice()) >= action->getNNodes())
        return Action::Skip;
    action->addNode(action->getNode(getChoice()));
    return Action::Continue;
}

OSG_END_NAMESPACE
