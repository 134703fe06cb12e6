#include "OSGMaterialGroup.h"

#include "OSGDrawAction.h"
#include "OSGIntersectAction.h"
#include "OSGLog.h"
#include "OSGMaterial.h"
#include "OSGNode.h"
#include "OSGRenderAction.h"

OSG_BEGIN_NAMESPACE

void MaterialGroup::initMethod()
{
    DrawAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialGroup::drawEnter));
    DrawAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialGroup::drawLeave));
    RenderAction::registerEnterDefault(getClassType(), makeFunctor(&MaterialGroup::renderEnter));
    RenderAction::registerLeaveDefault(getClassType(), makeFunctor(&MaterialGroup::renderLeave));
    IntersectAction::registerEnterDefault(getClassType(), makeFunctor(&Group::intersect));
}

MaterialGroup::MaterialGroup() = default;

MaterialGroup::MaterialGroup(const MaterialGroup &source) : Inherited(source) {}

MaterialGroup::~MaterialGroup() = default;

void MaterialGroup::onCreate(const MaterialGroup *source)
{
    addRefCP(getMaterial());
    Inherited::onCreate(source);
}

void MaterialGroup::onDestroy()
{
    const MaterialPtr material = getMaterial();
    _sfMaterial.setValue(NullFC);
    subRefCP(material);
    Inherited::onDestroy();
}

void MaterialGroup::setMaterial(const MaterialPtr &material)
{
    setRefdCP(_sfMaterial.getValue(), material);
}

void MaterialGroup::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MaterialGroup::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MaterialGroup NI" << std::endl;
}

Action::ResultE MaterialGroup::drawEnter(Action *action)
{
    if(getMaterial() != NullFC)
        dynamic_cast<DrawActionBase *>(action)->setMaterial(getMaterial().getCPtr(), action->getActNode());
    return dynamic_cast<DrawActionBase *>(action)->selectVisibles() != 0 ? Action::Continue : Action::Skip;
}

Action::ResultE MaterialGroup::drawLeave(Action *action)
{
    if(getMaterial() != NullFC)
        dynamic_cast<DrawActionBase *>(action)->setMaterial(nullptr, NullFC);
    return Action::Continue;
}

Action::ResultE MaterialGroup::renderEnter(Action *action)
{
    return drawEnter(action);
}

Action::ResultE MaterialGroup::renderLeave(Action *action)
{
    return drawLeave(action);
}

OSG_END_NAMESPACE
