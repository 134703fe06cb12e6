#include "OSGMaterialDrawable.h"

#include "OSGDrawActionBase.h"
#include "OSGLog.h"
#include "OSGMaterial.h"
#include "OSGRenderActionBase.h"

OSG_BEGIN_NAMESPACE

void MaterialDrawable::initMethod() {}

MaterialDrawable::MaterialDrawable() = default;

MaterialDrawable::MaterialDrawable(const MaterialDrawable &source) : Inherited(source) {}

MaterialDrawable::~MaterialDrawable() = default;

void MaterialDrawable::onCreate(const MaterialDrawable *source)
{
    addRefCP(getMaterial());
    Inherited::onCreate(source);
}

void MaterialDrawable::onDestroy()
{
    const MaterialPtr material = getMaterial();
    _sfMaterial.setValue(NullFC);
    subRefCP(material);
    Inherited::onDestroy();
}

void MaterialDrawable::setMaterial(const MaterialPtr &material)
{
    setRefdCP(_sfMaterial.getValue(), material);
}

void MaterialDrawable::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void MaterialDrawable::dump(UInt32, const BitVector) const
{
    SLOG << "Dump MaterialDrawable NI" << std::endl;
}

Material *MaterialDrawable::findMaterial(DrawActionBase *action) const
{
    if(action->getMaterial() != nullptr)
        return action->getMaterial();
    const MaterialPtr material = getMaterial() != NullFC ? getMaterial() : getDefaultMaterial();
    return material.getCPtr();
}

Action::ResultE MaterialDrawable::drawActionEnterHandler(Action *action)
{
    DrawActionBase *const draw = dynamic_cast<DrawActionBase *>(action);
    Material::DrawFunctor function = [this](DrawActionBase *by) { return drawPrimitives(by); };
    if(Material *const material = findMaterial(draw))
        material->draw(function, draw);
    else
        function(draw);
    draw->selectVisibles();
    return Action::Continue;
}

Action::ResultE MaterialDrawable::drawActionLeaveHandler(Action *)
{
    return Action::Continue;
}

Action::ResultE MaterialDrawable::renderActionEnterHandler(Action *action)
{
    RenderActionBase *const render = dynamic_cast<RenderActionBase *>(action);
    Material::DrawFunctor function = [this](DrawActionBase *by) { return drawPrimitives(by); };
    if(Material *const material = findMaterial(render))
        render->dropFunctor(function, material);
    else
        SWARNING << "MaterialDrawable: no material and no default material, nothing is drawn" << std::endl;
    render->selectVisibles();
    return Action::Continue;
}

Action::ResultE MaterialDrawable::renderActionLeaveHandler(Action *)
{
    return Action::Continue;
}

OSG_END_NAMESPACE
