#include "OSGGroup.h"

#include "OSGDrawAction.h"
#include "OSGIntersectAction.h"
#include "OSGLog.h"
#include "OSGRenderAction.h"

OSG_BEGIN_NAMESPACE

void Group::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&Group::draw));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&Group::draw));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Group::intersect));
}

Group::Group() = default;

Group::Group(const Group &source) : Inherited(source) {}

Group::~Group() = default;

Action::ResultE Group::draw(Action *action)
{
    return dynamic_cast<DrawActionBase *>(action)->selectVisibles() != 0 ? Action::Continue : Action::Skip;
}

Action::ResultE Group::intersect(Action *action)
{
    return dynamic_cast<IntersectAction *>(action)->selectHit() != 0 ? Action::Continue : Action::Skip;
}

void Group::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void Group::dump(UInt32, const BitVector) const
{
    SLOG << "Dump Group NI" << std::endl;
}

OSG_END_NAMESPACE
